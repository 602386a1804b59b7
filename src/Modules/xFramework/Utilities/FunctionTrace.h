#pragma once

#include <cstdint>
#include <string>

namespace Utilities {

/// What the log calls a source file: its path from src/ (included), without extension. The compiler
/// names files as the build does; a path outside such a tree only loses its extension.
std::string SourceName(const std::string& path);

/// Logs at the info level that a function was entered, and that it was left when the scope ends
/// normally. A scope that an exception ends logs no exit. Both records name the source file by its
/// path from src/ without extension, and both name the line of the trace.
class FunctionTrace {
public:
    /// function is the qualified name and must outlive the trace. file and line are the caller's
    /// own. (clang 14 has the built-ins, but not std::source_location.)
    explicit FunctionTrace(const char* function, const char* file = __builtin_FILE(),
                           std::uint32_t line = __builtin_LINE());
    /// Lets what the log throws pass; no other exception is on its way then.
    ~FunctionTrace() noexcept(false);

    FunctionTrace(const FunctionTrace&) = delete;
    FunctionTrace& operator=(const FunctionTrace&) = delete;

private:
    const char* m_function;
    std::string m_file;
    std::uint32_t m_line;
    int m_exceptionsAtEntry;
};

} // namespace Utilities
