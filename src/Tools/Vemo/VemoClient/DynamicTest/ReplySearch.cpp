#include "Tools/Vemo/VemoClient/DynamicTest/ReplySearch.h"

#include <algorithm>
#include <regex>

namespace PowerTest {

namespace {

using Position = std::string::difference_type;

/// The plain text with which every match begins.
std::string LiteralStart(const std::string& pattern) {
    return pattern.substr(0, pattern.find_first_of("\\^$.*+?()[]{}|"));
}

/// Searches the part of a line that begins with a literal start, for a match that begins there too.
bool MatchesAt(const std::string& reply, std::size_t start, std::size_t lineEnd,
               const std::regex& expression, std::smatch& match) {
    return std::regex_search(reply.begin() + static_cast<Position>(start),
                             reply.begin() + static_cast<Position>(lineEnd), match, expression,
                             std::regex_constants::match_continuous);
}

} // namespace

std::optional<std::string> FindInReply(const std::string& reply, const std::string& pattern) {
    const std::string literal = LiteralStart(pattern);
    std::size_t start = reply.find(literal);
    if (start == std::string::npos)
        return std::nullopt;
    // The other matcher of the library recurses once a character and overflows the stack.
    const std::regex expression(pattern, std::regex_constants::ECMAScript |
                                             std::regex_constants::__polynomial);
    // Where any text may follow the literal, the first literal of a line decides for the others: a
    // match from one of them is a match from the first as well. Trying each of them would take
    // quadratic time.
    const bool firstDecides = pattern.compare(literal.size(), 2, ".*") == 0;
    std::size_t lineEnd = 0;
    for (; start != std::string::npos;
         start = reply.find(literal, firstDecides ? lineEnd : start + 1)) {
        if (start >= lineEnd)
            lineEnd = std::min(reply.find_first_of("\r\n", start), reply.size());
        std::smatch match;
        if (MatchesAt(reply, start, lineEnd, expression, match))
            return match[1].matched ? std::optional(match[1].str()) : std::nullopt;
    }
    return std::nullopt;
}

} // namespace PowerTest
