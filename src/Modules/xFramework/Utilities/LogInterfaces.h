#pragma once

#include <cstdint>
#include <ostream>
#include <string>

namespace Utilities {

/// Common base of what a log channel is made of.
class ILogInterface {
public:
    virtual ~ILogInterface() = default;
};

/// Turns a record into text.
class ILogFormatter : public ILogInterface {
public:
    virtual void Format(std::uint32_t level, const char* file, const char* function,
                        const std::string& message, std::ostream& out) = 0;
};

/// Takes finished log lines, without line end.
class ILogDevice : public ILogInterface {
public:
    virtual void Write(const std::string& line) = 0;
};

/// Vetoes records; the system installs none.
class ILogFilter : public ILogInterface {
public:
    virtual bool Accept(std::uint32_t level, const char* file, const char* function,
                        const std::string& message) = 0;
};

} // namespace Utilities
