#pragma once

#include <cstdint>
#include <string>

namespace Utilities {

/// The place in the sources where an exception was raised.
class ErrorLocation {
public:
    /// Copies both texts: the source file's path from src/ without extension, and the qualified
    /// name of the function.
    ErrorLocation(const char* file, std::uint32_t line, const char* function)
        : m_line(line), m_file(file), m_function(function) {}
    virtual ~ErrorLocation() = default;

    ErrorLocation(const ErrorLocation&) = delete;
    ErrorLocation& operator=(const ErrorLocation&) = delete;

    virtual std::uint32_t GetLine() const { return m_line; }
    virtual const std::string& GetFile() const { return m_file; }
    virtual const std::string& GetFunction() const { return m_function; }

private:
    std::uint32_t m_line;
    std::string m_file;
    std::string m_function;
};

} // namespace Utilities
