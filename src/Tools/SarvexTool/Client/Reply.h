#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// What one answer of the daemon says.
struct Reply {
    /// For standard output; each line ends in a line feed.
    std::string information;
    /// For standard error; each line ends in a line feed.
    std::string error;
    /// 0 when the answer gives none; 10 when it says "uncalibrated".
    std::int32_t returnCode = 0;
};

/// The body of an answer: what follows its HTTP head, or the whole answer when it has none. The
/// head is not examined. The result refers to the answer's bytes.
std::string_view CutHttpHead(std::string_view answer);

/// Sorts the lines of an answer's body into the sections that its marker lines open, and reads the
/// return code. Every line, markers included, and a line feed are appended to allLines, also when
/// the call ends with an exception. Throws what Utilities::StringToInt throws when the line after
/// the return-code marker holds no number.
Reply SortReply(std::string_view body, std::string& allLines);
