#pragma once

// Public, stable within a major version. Channels are set up before other threads exist; records
// come from any thread, so that formatters, devices and filters are called by several threads at
// once and lock what they share. What one of them throws passes to whoever logs; the channels after
// it do not get the record. The printer owns no device, formatter or filter. The process's printer,
// which Log uses, is that of SingletonWrapper<Utilities::LogPrinter>.

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <ostream>
#include <string>

namespace Utilities {

/// Common base of what a log channel is made of.
class ILogInterface {
public:
    virtual ~ILogInterface() = default;
};

/// Turns a record into text, written to a new stream for each record. A record has no time: a
/// formatter that shows one takes it itself.
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

/// One output of the log. The channel owns neither its device nor its filter or formatter.
struct LogChannel {
    std::string name;
    ILogDevice* device = nullptr;
    ILogFilter* filter = nullptr;
    /// A channel without a formatter writes nothing.
    ILogFormatter* formatter = nullptr;
    /// The levels accepted, as bits; none after adding.
    std::uint32_t levelMask = 0;
};

/// Fans each log record out to the channels. Channels are added, removed and configured during
/// start-up only, before other threads run; records may come from any thread.
class LogPrinter {
public:
    /// Adds a channel at the end that accepts no level yet. When the name is taken, the new channel
    /// takes it over, yet the old one goes on receiving records: that asymmetry is kept as it is.
    /// The device is not null. When memory runs out, everything is as it was.
    void AddDevice(const std::string& name, ILogDevice* device);

    /// Takes the channel that has the name out; nothing happens when there is none.
    void RemoveDevice(const std::string& name);

    /// Sets the formatter of the channel that has the name; nothing happens when there is none.
    void SetFormatter(const std::string& name, ILogFormatter* formatter);

    /// Sets the levels that the channel of the name accepts; nothing happens when there is none.
    void SetLevelMask(const std::string& name, std::uint32_t mask);

    /// Sets the filter of the channel that has the name; nothing happens when there is none.
    void SetFilter(const std::string& name, ILogFilter* filter);

    /// Sends one record to every channel in the order of adding.
    void Dispatch(std::uint32_t level, const char* file, std::uint32_t line, const char* function,
                  const std::string& message);

private:
    LogChannel* Find(const std::string& name);

    std::list<std::unique_ptr<LogChannel>> m_channels;
    std::map<std::string, LogChannel*> m_channelsByName;
};

} // namespace Utilities
