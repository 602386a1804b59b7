#include "Modules/xFramework/Utilities/LogPrinter.h"

#include <sstream>

namespace Utilities {

namespace {

void WriteToChannel(const LogChannel& channel, std::uint32_t level, const char* file,
                    const char* function, const std::string& message) {
    if ((channel.levelMask & level) == 0)
        return;
    if (channel.filter != nullptr && !channel.filter->Accept(level, file, function, message))
        return;
    if (channel.formatter == nullptr)
        return;
    std::ostringstream text;
    channel.formatter->Format(level, file, function, message, text);
    channel.device->Write(text.str());
}

} // namespace

void LogPrinter::AddDevice(const std::string& name, ILogDevice* device) {
    // What may run out of memory comes first; the last step cannot fail.
    std::list<std::unique_ptr<LogChannel>> added;
    added.push_back(std::make_unique<LogChannel>());
    LogChannel* const channel = added.back().get();
    channel->name = name;
    channel->device = device;
    m_channelsByName[name] = channel;
    m_channels.splice(m_channels.end(), added);
}

void LogPrinter::RemoveDevice(const std::string& name) {
    const LogChannel* const channel = Find(name);
    if (channel == nullptr)
        return;
    m_channelsByName.erase(name);
    m_channels.remove_if([channel](const auto& entry) { return entry.get() == channel; });
}

void LogPrinter::SetFormatter(const std::string& name, ILogFormatter* formatter) {
    if (LogChannel* const channel = Find(name))
        channel->formatter = formatter;
}

void LogPrinter::SetLevelMask(const std::string& name, std::uint32_t mask) {
    if (LogChannel* const channel = Find(name))
        channel->levelMask = mask;
}

void LogPrinter::SetFilter(const std::string& name, ILogFilter* filter) {
    if (LogChannel* const channel = Find(name))
        channel->filter = filter;
}

void LogPrinter::Dispatch(std::uint32_t level, const char* file, std::uint32_t /*line*/,
                          const char* function, const std::string& message) {
    for (const auto& channel : m_channels)
        WriteToChannel(*channel, level, file, function, message);
}

LogChannel* LogPrinter::Find(const std::string& name) {
    const auto found = m_channelsByName.find(name);
    return found == m_channelsByName.end() ? nullptr : found->second;
}

} // namespace Utilities
