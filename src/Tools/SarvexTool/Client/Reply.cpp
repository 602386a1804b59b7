#include "Tools/SarvexTool/Client/Reply.h"

#include "Modules/xFramework/Utilities/StringToInt.h"

#include <algorithm>
#include <array>

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
    explicit LineSorter(std::string& lines) : m_lines(lines) {}

    Reply Sort() {
        while (m_lineStart < m_lines.size())
            TakeLine();
        TakeSection();
        return std::move(m_reply);
    }

private:
    void TakeLine() {
        const std::size_t lineEnd = m_lines.find('\n', m_lineStart);
        const auto line = std::string_view(m_lines).substr(m_lineStart, lineEnd - m_lineStart);
        const Marker* const marker = FindMarker(line);
        if (marker != nullptr)
            TakeSection();
        m_lineStart = lineEnd + 1;
        if (marker != nullptr)
            OpenSection(marker->section);
        else if (m_section == Section::ReturnCode)
            TakeReturnCode(line);
    }

    void OpenSection(Section section) {
        m_section = section;
        m_sectionStart = m_lineStart;
    }

    void TakeReturnCode(std::string_view line) {
        try {
            m_reply.returnCode = Utilities::StringToInt(std::string(line));
        } catch (...) {
            m_lines.resize(m_lineStart);
            throw;
        }
        // Only the first line after the marker is the code.
        OpenSection(Section::Ignored);
    }

    /// Adds the lines of the open section, up to the one at hand, to the section's text.
    void TakeSection() {
        const auto lines =
            std::string_view(m_lines).substr(m_sectionStart, m_lineStart - m_sectionStart);
        if (m_section == Section::Information)
            m_reply.information.Append(lines);
        else if (m_section == Section::Error)
            m_reply.error.Append(lines);
    }

    std::string& m_lines;
    std::size_t m_lineStart = 0;
    std::size_t m_sectionStart = 0;
    // Lines before the first marker count as information.
    Section m_section = Section::Information;
    Reply m_reply;
};

bool SaysUncalibrated(const Reply& reply) {
    constexpr std::string_view word = "uncalibrated";
    return reply.information.View().find(word) != std::string_view::npos ||
           reply.error.View().find(word) != std::string_view::npos;
}

} // namespace

std::string CutHttpHead(std::string answer) {
    constexpr std::string_view headEnd = "\r\n\r\n";
    const std::size_t end = answer.find(headEnd);
    if (end != std::string::npos)
        answer.erase(0, end + headEnd.size());
    return answer;
}

Reply SortReply(std::string& body) {
    constexpr std::int32_t uncalibratedCode = 10;
    // What stands behind the last line feed counts as a line too, even when it is empty.
    body += '\n';
    Reply reply = LineSorter(body).Sort();
    if (SaysUncalibrated(reply))
        reply.returnCode = uncalibratedCode;
    return reply;
}
