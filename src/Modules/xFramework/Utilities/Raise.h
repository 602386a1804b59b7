#pragma once

#include <cstdint>
#include <string>

namespace Utilities {

/// Where in the sources an error is raised. The figures are literals, so that they stay what logs
/// and handlers of other versions know.
struct ErrorSite {
    /// Path of the source file from src/, src/ included, without extension.
    const char* file;
    std::uint32_t line;
    /// Qualified name of the function.
    const char* function;
};

/// Logs the message at the error level, then throws it as a new Utilities::Exception* that carries
/// the site as its location.
[[noreturn]] void Raise(const std::string& message, const ErrorSite& site);

/// Raises "Assertion (…) failed at …" when the condition is false; conditionText is its source
/// text. Always active.
void Assert(bool condition, const char* conditionText, const ErrorSite& site);

} // namespace Utilities
