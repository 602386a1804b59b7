#pragma once

#include "Tools/SarvexTool/Client/SectionText.h"

#include <cstdint>
#include <string>

/// What one answer of the daemon says.
struct Reply {
    /// For standard output; each line ends in a line feed.
    SectionText information;
    /// For standard error; each line ends in a line feed.
    SectionText error;
    /// 0 when the answer gives none; 10 when it says "uncalibrated".
    std::int32_t returnCode = 0;
};

/// The body of an answer: what follows its HTTP head, or the whole answer when it has none. The
/// head is not examined.
std::string CutHttpHead(std::string answer);

/// Sorts the lines of an answer's body into the sections that its marker lines open, and reads the
/// return code. Makes a list of lines of the body itself, which may be long: every line, markers
/// and an empty last one included, followed by a line feed. The sections look at it: it has to
/// outlive the reply as it is. Throws what Utilities::StringToInt throws when the line after the
/// return-code marker holds no number; the list then ends with that line.
Reply SortReply(std::string& body);
