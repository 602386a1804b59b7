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

void AppendLine(std::string& text, std::string_view line) {
    text += line;
    text += '\n';
}

/// Takes the lines of a body one by one.
class LineSorter {
public:
    void Take(std::string_view line) {
        if (const Marker* const marker = FindMarker(line))
            m_section = marker->section;
        else
            TakeContent(line);
    }

    Reply& Result() { return m_reply; }

private:
    void TakeContent(std::string_view line) {
        switch (m_section) {
        case Section::Information:
            AppendLine(m_reply.information, line);
            break;
        case Section::Error:
            AppendLine(m_reply.error, line);
            break;
        case Section::ReturnCode:
            m_reply.returnCode = Utilities::StringToInt(std::string(line));
            // Only the first line after the marker is the code.
            m_section = Section::Ignored;
            break;
        case Section::Ignored:
            break;
        }
    }

    Reply m_reply;
    // Lines before the first marker count as information.
    Section m_section = Section::Information;
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
    LineSorter sorter;
    // At most a line end more than the body in each. Room that nothing is written to costs nothing.
    allLines.reserve(allLines.size() + body.size() + 1);
    sorter.Result().information.reserve(body.size() + 1);
    // What stands behind the last line feed counts as a line too, even when it is empty.
    for (bool isLast = false; !isLast;) {
        const std::size_t end = body.find('\n');
        isLast = end == std::string_view::npos;
        const std::string_view line = body.substr(0, end);
        AppendLine(allLines, line);
        sorter.Take(line);
        if (!isLast)
            body.remove_prefix(end + 1);
    }
    Reply& reply = sorter.Result();
    if (SaysUncalibrated(reply))
        reply.returnCode = uncalibratedCode;
    return std::move(reply);
}
