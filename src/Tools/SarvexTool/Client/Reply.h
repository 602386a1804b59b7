#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace SarvexTool {

/// What one answer of the daemon says.
struct Reply {
    /// For standard output; each line ends in a line feed.
    std::string information;
    /// For standard error; each line ends in a line feed.
    std::string error;
    /// 0 when the answer gives none; 10 when it says "uncalibrated".
    std::int32_t returnCode = 0;
    /// Every line of the body, markers and an empty last one included, followed by a line feed.
    std::string allLines;
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
