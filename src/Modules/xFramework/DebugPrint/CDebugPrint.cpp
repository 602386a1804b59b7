#include "Modules/xFramework/DebugPrint/CDebugPrint.h"

#include <cstdarg>
#include <cstdio>

namespace {

constexpr std::size_t bufferSize = 4096;

// Widths, blanks, the tab and the misspelled warnings are what readers of these lines search for.
constexpr std::array<const char*, 16> tags{
    "       ",         "[ OEM_ERROR   ] ", "[ OEM_WARNING ] ", "[ OEM_INFO    ] ",
    "[ FATAL_ERROR ]", "[ ERROR1      ]",  "[ ERROR2      ]",  "[ FW_ERROR\t   ]",
    "[ WARNNING1   ]", "[ WARNNING2   ]",  "[ FW_WRNNING  ]",  "[ INFO0       ]",
    "[ LL_INFO1    ]", "[ INFO2       ]",  "[ INFO3       ]",  "[ FW_INFO     ]"};

// A negative number of a level or a sink becomes an index far beyond the last one.

const char* FindTag(std::int32_t level) {
    const auto index = static_cast<std::size_t>(level);
    return index < tags.size() ? tags[index] : tags[0];
}

} // namespace

CDebugPrint& CDebugPrint::Instance() {
    static CDebugPrint instance;
    return instance;
}

void CDebugPrint::PrintText(const char* context, std::int32_t level, const char* text) {
    if (!m_enabled || m_pFormatter == nullptr)
        return;
    std::array<char, bufferSize> line{};
    FormatLine(context, FindTag(level), text, line.data(), line.size());
    for (std::size_t index = 0; index < sinkCount; ++index) {
        if (m_thresholds[index] >= level && m_sinks[index] != nullptr)
            m_sinks[index]->Write(line.data());
    }
}

void CDebugPrint::Print(const char* context, std::int32_t level, const char* format, ...) {
    std::array<char, bufferSize> text{};
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
    va_end(arguments);
    if (length < 0)
        text[0] = '\0';
    PrintText(context, level, text.data());
}

void CDebugPrint::SetThreshold(int sinkIndex, std::int32_t level) {
    const auto index = static_cast<std::size_t>(sinkIndex);
    if (index >= sinkCount)
        return;
    m_thresholds[index] = level;
    // The last call alone decides, whatever the other sinks' thresholds are: hosts switch all
    // printing off by setting any one of them to 0.
    m_enabled = level != 0;
}

std::int32_t CDebugPrint::GetThreshold(int sinkIndex) const {
    const auto index = static_cast<std::size_t>(sinkIndex);
    return index < sinkCount ? m_thresholds[index] : 0;
}

void CDebugPrint::SetSink(int sinkIndex, IDebugSink* sink) {
    const auto index = static_cast<std::size_t>(sinkIndex);
    if (index < sinkCount)
        m_sinks[index] = sink;
}

bool CDebugPrint::SetFormatter(IDebugLineFormatter* pFormatter) {
    if (pFormatter != nullptr && m_pFormatter != nullptr)
        return false;
    m_pFormatter.reset(pFormatter);
    return true;
}

void CDebugPrint::FormatLine(const char* context, const char* tag, const char* text, char* buffer,
                             std::size_t size) {
    if (m_pFormatter != nullptr)
        m_pFormatter->FormatLine(context, tag, text, buffer, size);
    else if (size > 0)
        buffer[0] = '\0';
}
