#include "Tools/SarvexTool/Bench/Supervision/Answer.h"

#include "Modules/xFramework/Utilities/StringToInt.h"
#include "Tools/SarvexTool/Client/Reply.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Bench {

namespace {

constexpr std::int32_t uncalibratedCode = 10;
constexpr std::string_view endMark = "Done";

/// What follows the last return-code marker that anything follows; nothing where there is none.
std::optional<std::string_view> AfterMarker(std::string_view body) {
    constexpr std::string_view marker = "Sarvex tool RETURN CODE\n";
    for (std::size_t place = body.rfind(marker); place != std::string_view::npos;
         place = place == 0 ? std::string_view::npos : body.rfind(marker, place - 1)) {
        const std::string_view rest = body.substr(place + marker.size());
        if ((place == 0 || body[place - 1] == '\n') && !rest.empty())
            return rest;
    }
    return std::nullopt;
}

std::optional<std::int32_t> ExplicitCode(std::string_view body) {
    const std::optional<std::string_view> rest = AfterMarker(body);
    if (!rest)
        return std::nullopt;
    try {
        return Utilities::StringToInt(std::string(rest->substr(0, rest->find('\n'))));
    } catch (const std::logic_error&) {
        return std::nullopt;
    }
}

std::string WordsOf(const SarvexTool::Reply& reply) {
    constexpr std::size_t longest = 1000;
    std::string words = InOneLine(reply.Error());
    if (words.empty())
        words = InOneLine(reply.Information());
    if (words.size() > longest)
        words.replace(longest, std::string::npos, "...");
    if (!words.empty())
        return words;
    return "return code " + std::to_string(reply.returnCode);
}

} // namespace

bool Answer::IsUncalibrated() const {
    return code == uncalibratedCode;
}

Answer ReadAnswer(std::string bytes) {
    std::string body = SarvexTool::CutHttpHead(std::move(bytes));
    if (body.ends_with(endMark))
        body.resize(body.size() - endMark.size());
    Answer answer;
    answer.explicitCode = ExplicitCode(body);
    SarvexTool::Reply reply = SarvexTool::SortReply(std::move(body));
    answer.code = reply.returnCode;
    answer.isCodeUnreadable = reply.failure != nullptr;
    answer.hasErrors = !InOneLine(reply.Error()).empty();
    answer.words = WordsOf(reply);
    answer.lines = std::move(reply.allLines);
    return answer;
}

bool HasReturnCode(std::string_view body) {
    const std::optional<std::string_view> rest = AfterMarker(body);
    return rest && rest->find('\n') != std::string_view::npos;
}

std::string InOneLine(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view part = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        while (part.ends_with('\r') || part.ends_with(' '))
            part.remove_suffix(1);
        if (!part.empty())
            line.append(line.empty() ? "" : "; ").append(part);
    }
    return line;
}

} // namespace Bench
