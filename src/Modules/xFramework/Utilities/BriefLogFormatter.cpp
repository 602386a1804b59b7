#include "Modules/xFramework/Utilities/BriefLogFormatter.h"

#include "Modules/xFramework/Utilities/Log.h"

#include <array>
#include <iomanip>

namespace Utilities {

namespace {

struct LevelTag {
    std::uint32_t level;
    const char* tag;
};

constexpr std::array<LevelTag, 4> levelTags{{{LogLevel::Error, "[OEMERROR]"},
                                             {LogLevel::Warning, "[OEMWARNING]"},
                                             {LogLevel::Info, "[OEMINFO]"},
                                             {LogLevel::Trace, "[OEMTRACE]"}}};

const char* FindTag(std::uint32_t level) {
    for (const LevelTag& entry : levelTags) {
        if (entry.level == level)
            return entry.tag;
    }
    return "";
}

/// Leaves the section on every road out of a block.
class Entry {
public:
    explicit Entry(SyncObjectsOSAL::ICriticalSection& section) : m_section(section) {
        m_section.Enter();
    }
    ~Entry() { m_section.Leave(); }
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

private:
    SyncObjectsOSAL::ICriticalSection& m_section;
};

} // namespace

void BriefLogFormatter::Format(std::uint32_t level, const char* /*file*/, const char* function,
                               const std::string& message, std::ostream& out) {
    constexpr int tagWidth = 10;
    constexpr int functionWidth = 40;
    out << std::left << std::setw(tagWidth) << FindTag(level) << "| " << std::setw(functionWidth)
        << function << " | " << message;
}

StreamLogDevice::StreamLogDevice(std::ostream* stream, SyncObjectsOSAL::ICriticalSection* pLock)
    : m_stream(stream), m_pLock(pLock) {}

void StreamLogDevice::Write(const std::string& line) {
    const Entry entry(*m_pLock);
    *m_stream << line << std::endl;
}

} // namespace Utilities
