#pragma once

#include "Tools/SarvexTool/Bench/Core/ProblemList.h"

#include <string>
#include <string_view>

namespace Bench {

/// A test file in which was mended what can be mended in one way only.
struct CorrectedTestFile {
    std::string bytes;
    /// What was changed, with its place in the file as it was.
    ProblemList changes;
};

/// Mends encoding, separators, quotes and line ends; writes "-" for an empty cell where the line
/// has as many cells as the header, and a point for a decimal comma that separates no cells. What
/// else is wrong stays as it is.
CorrectedTestFile CorrectTestFile(std::string_view bytes);

} // namespace Bench
