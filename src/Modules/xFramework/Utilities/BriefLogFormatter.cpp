#include "Modules/xFramework/Utilities/BriefLogFormatter.h"

#include "Modules/xFramework/Utilities/Log.h"

#include <algorithm>
#include <array>

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

/// The text with blanks on its right up to the width; a longer text whole.
std::string PadRight(std::string text, std::size_t width) {
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

/// Leaves the section however a block is left.
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
    constexpr std::size_t tagWidth = 10;
    constexpr std::size_t functionWidth = 40;
    const std::string line = PadRight(FindTag(level), tagWidth) + "| " +
                             PadRight(function, functionWidth) + " | " + message;
    // Unformatted: the stream's own width, fill and flags neither count nor change.
    out.write(line.data(), static_cast<std::streamsize>(line.size()));
}

StreamLogDevice::StreamLogDevice(std::ostream* stream, SyncObjectsOSAL::ICriticalSection* pLock)
    : m_stream(stream), m_pLock(pLock) {}

void StreamLogDevice::Write(const std::string& line) {
    const Entry entry(*m_pLock);
    *m_stream << line << std::endl;
}

} // namespace Utilities
