#pragma once

// Public, stable within a major version. For any thread; a reply belongs to one at a time and owns
// its text. Sizes are in bytes. A wrong return code is kept in the reply, not thrown.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace SarvexTool {

/// One section's part of an answer's lines. Neighbouring lines are not copied, for they may be
/// nearly all of a long answer; only those in several places are joined.
class SectionText {
public:
    /// Adds lines of the answer, whose text must stay the same to their end.
    void Add(const std::string& allLines, std::size_t start, std::size_t size);

    /// The section's text; valid until it or the answer's text is changed, moved or destroyed.
    std::string_view In(const std::string& allLines) const;

private:
    std::size_t m_start = 0;
    std::size_t m_size = 0;
    std::string m_joined;
};

/// What one answer of the daemon says.
struct Reply {
    /// For standard output; each line ends in a line feed. Valid until the reply is changed, moved
    /// or destroyed, as is Error.
    std::string_view Information() const { return information.In(allLines); }
    /// For standard error; each line ends in a line feed.
    std::string_view Error() const { return error.In(allLines); }

    /// Every line of the body, markers and an empty last one included, followed by a line feed.
    std::string allLines;
    SectionText information;
    SectionText error;
    /// 0 when the answer gives none; 10 when it says "uncalibrated".
    std::int32_t returnCode = 0;
    /// What Utilities::StringToInt threw when the line after the return-code marker held no number;
    /// null otherwise. That line is then the last of all lines, and none after it was sorted.
    std::exception_ptr failure;
};

/// The body of an answer: what follows its HTTP head, or the whole answer when it has none. The
/// head is not examined.
std::string CutHttpHead(std::string answer);

/// Sorts the lines of an answer's body into the sections that its marker lines open, and reads the
/// return code.
Reply SortReply(std::string body);

} // namespace SarvexTool
