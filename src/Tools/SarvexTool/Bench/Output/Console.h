#pragma once

#include <ostream>

namespace Bench {

/// A stream of text for people.
struct Console {
    std::ostream& stream;
    /// Whether escape sequences for colours may be written.
    bool hasColours = false;
};

} // namespace Bench
