#include "Tools/SarvexTool/Client/Reply.h"

#include "Modules/xFramework/Utilities/StringToInt.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace SarvexTool {

namespace {

enum class Section { Ignored, Information, Error, ReturnCode };

struct Marker {
    std::string_view line;
    Section section;
};

constexpr std::array<Marker, 3> markers{{{"Sarvex tool INFO", Section::Information},
                                         {"Sarvex tool ERROR", Section::Error},
                                         {"Sarvex tool RETURN CODE", Section::ReturnCode}}};

const Marker* FindMarker(std::string_view line) {
    const auto* const found =
        std::find_if(markers.begin(), markers.end(),
                     [line](const Marker& marker) { return marker.line == line; });
    return found == markers.end() ? nullptr : found;
}

/// Sorts lines that each end in a line feed. Neighbouring lines of one section are taken in one
/// piece: an answer may have a million of them.
class LineSorter {
public:
    explicit LineSorter(std::string lines) { m_reply.allLines = std::move(lines); }

    Reply Sort() {
        while (m_lineStart < m_reply.allLines.size())
            TakeLine();
        TakeSection();
        return std::move(m_reply);
    }

private:
    void TakeLine() {
        const std::string_view lines = m_reply.allLines;
        const std::size_t lineEnd = lines.find('\n', m_lineStart);
        const std::string_view line = lines.substr(m_lineStart, lineEnd - m_lineStart);
        const Marker* const marker = FindMarker(line);
        if (marker != nullptr)
            TakeSection();
        m_lineStart = lineEnd + 1;
        if (marker != nullptr)
            OpenSection(marker->section);
        else if (m_section == Section::ReturnCode)
            TakeReturnCode(std::string(line));
    }

    void OpenSection(Section section) {
        m_section = section;
        m_sectionStart = m_lineStart;
    }

    void TakeReturnCode(const std::string& line) {
        try {
            m_reply.returnCode = Utilities::StringToInt(line);
        } catch (...) {
            m_reply.failure = std::current_exception();
            m_reply.allLines.resize(m_lineStart);
        }
        // Only the first line after the marker is the code.
        OpenSection(Section::Ignored);
    }

    /// Adds the lines of the open section, up to the current one, to the section's text.
    void TakeSection() {
        const std::size_t size = m_lineStart - m_sectionStart;
        if (m_section == Section::Information)
            m_reply.information.Add(m_reply.allLines, m_sectionStart, size);
        else if (m_section == Section::Error)
            m_reply.error.Add(m_reply.allLines, m_sectionStart, size);
    }

    std::size_t m_lineStart = 0;
    std::size_t m_sectionStart = 0;
    // Lines before the first marker count as information.
    Section m_section = Section::Information;
    Reply m_reply;
};

bool SaysUncalibrated(const Reply& reply) {
    constexpr std::string_view word = "uncalibrated";
    return reply.Information().find(word) != std::string_view::npos ||
           reply.Error().find(word) != std::string_view::npos;
}

} // namespace

void SectionText::Add(const std::string& allLines, std::size_t start, std::size_t size) {
    if (size == 0)
        return;
    if (m_size == 0) {
        m_start = start;
        m_size = size;
        return;
    }
    if (m_joined.empty())
        m_joined.assign(allLines, m_start, m_size);
    m_joined.append(allLines, start, size);
}

std::string_view SectionText::In(const std::string& allLines) const {
    return m_joined.empty() ? std::string_view(allLines).substr(m_start, m_size) : m_joined;
}

std::string CutHttpHead(std::string answer) {
    constexpr std::string_view headEnd = "\r\n\r\n";
    const std::size_t end = answer.find(headEnd);
    if (end != std::string::npos)
        answer.erase(0, end + headEnd.size());
    return answer;
}

Reply SortReply(std::string body) {
    constexpr std::int32_t uncalibratedCode = 10;
    // What follows the last line feed counts as a line too, even when it is empty.
    body += '\n';
    Reply reply = LineSorter(std::move(body)).Sort();
    if (SaysUncalibrated(reply))
        reply.returnCode = uncalibratedCode;
    return reply;
}

} // namespace SarvexTool
