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

/// Sorts the lines of a body. Neighbouring lines of one section are copied in one piece: an answer
/// may have a million of them.
class LineSorter {
public:
    LineSorter(std::string_view body, std::string& allLines) : m_body(body), m_allLines(allLines) {
        // At most a line end more than the body. Room that nothing is written to costs nothing.
        m_allLines.reserve(m_allLines.size() + body.size() + 1);
        m_reply.information.reserve(body.size() + 1);
    }

    Reply Sort() {
        // What stands behind the last line feed counts as a line too, even when it is empty.
        while (m_lineStart <= m_body.size())
            TakeLine();
        CopyUpTo(m_lineStart);
        return std::move(m_reply);
    }

private:
    void TakeLine() {
        const std::size_t lineEnd = std::min(m_body.find('\n', m_lineStart), m_body.size());
        const std::string_view line = m_body.substr(m_lineStart, lineEnd - m_lineStart);
        const std::size_t nextLine = lineEnd + 1;
        if (const Marker* const marker = FindMarker(line))
            OpenSection(marker->section, nextLine);
        else if (m_section == Section::ReturnCode)
            TakeReturnCode(line, nextLine);
        m_lineStart = nextLine;
    }

    void OpenSection(Section section, std::size_t nextLine) {
        CopyUpTo(m_lineStart);
        m_section = Section::Ignored;
        CopyUpTo(nextLine);
        m_section = section;
    }

    void TakeReturnCode(std::string_view line, std::size_t nextLine) {
        CopyUpTo(nextLine);
        m_reply.returnCode = Utilities::StringToInt(std::string(line));
        // Only the first line after the marker is the code.
        m_section = Section::Ignored;
    }

    /// Copies the lines before a place of the body that are not copied yet: all to the list of all
    /// lines and those of a section to its text.
    void CopyUpTo(std::size_t end) {
        if (end == m_copied)
            return;
        const std::string_view lines = m_body.substr(m_copied, end - m_copied);
        const char* const missingLineEnd = end > m_body.size() ? "\n" : "";
        m_allLines.append(lines).append(missingLineEnd);
        if (std::string* const text = TextOf(m_section))
            text->append(lines).append(missingLineEnd);
        m_copied = end;
    }

    std::string* TextOf(Section section) {
        if (section == Section::Information)
            return &m_reply.information;
        return section == Section::Error ? &m_reply.error : nullptr;
    }

    std::string_view m_body;
    std::string& m_allLines;
    /// Where the line at hand begins: behind the body's end when there is none.
    std::size_t m_lineStart = 0;
    /// As far as this the body has been copied.
    std::size_t m_copied = 0;
    // Lines before the first marker count as information.
    Section m_section = Section::Information;
    Reply m_reply;
};

bool SaysUncalibrated(const Reply& reply) {
    constexpr std::string_view word = "uncalibrated";
    return reply.information.find(word) != std::string::npos ||
           reply.error.find(word) != std::string::npos;
}

} // namespace

std::string_view CutHttpHead(std::string_view answer) {
    constexpr std::string_view headEnd = "\r\n\r\n";
    const std::size_t end = answer.find(headEnd);
    return end == std::string_view::npos ? answer : answer.substr(end + headEnd.size());
}

Reply SortReply(std::string_view body, std::string& allLines) {
    constexpr std::int32_t uncalibratedCode = 10;
    Reply reply = LineSorter(body, allLines).Sort();
    if (SaysUncalibrated(reply))
        reply.returnCode = uncalibratedCode;
    return reply;
}
