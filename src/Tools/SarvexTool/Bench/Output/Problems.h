#pragma once

#include "Tools/SarvexTool/Bench/Core/Problems.h"
#include "Tools/SarvexTool/Bench/Output/Console.h"

#include <span>
#include <string>

namespace Bench {

/// Writes a line for each problem: FILE:LINE:COLUMN: error: TEXT, or warning. A problem of line 0
/// is one of the file itself, and has neither line nor column: FILE: error: TEXT.
void PrintProblems(const Console& console, const std::string& file,
                   std::span<const Problem> problems);

/// The same for what was mended: FILE:LINE:COLUMN: corrected: TEXT.
void PrintCorrections(const Console& console, const std::string& file,
                      std::span<const Problem> corrections);

} // namespace Bench
