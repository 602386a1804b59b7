#pragma once

#include <string>

namespace Utilities {

/// What a catch point needs to know of the exception that it caught, whether that travelled as a
/// value or as a pointer.
struct CaughtException {
    enum class Kind {
        /// An Utilities::Exception (or another standard exception that travelled as a pointer).
        Framework,
        /// A std::ios_base::failure.
        StreamFailure,
        /// Any other standard exception.
        Standard,
        /// Not a standard exception; text is empty.
        Unknown
    };

    Kind kind;
    /// The exception's own message.
    std::string text;
};

/// Takes the exception that is being handled: to be called in a catch block only. One that travels
/// as a pointer is deleted.
CaughtException TakeCaughtException();

} // namespace Utilities
