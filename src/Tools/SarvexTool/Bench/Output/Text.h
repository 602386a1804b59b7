#pragma once

#include "Tools/SarvexTool/Bench/Output/Console.h"
#include "Tools/SarvexTool/Bench/Output/Subjects.h"

namespace Bench {

/// Writes for people: the counts by band and verdict with the worst margins, what did not pass, and
/// the verdict of the run in the last line.
void PrintJudgements(const Console& console, const JudgedRun& judged);

/// Writes for people: the mean shift of each band and rate, the differences, and in the last line
/// whether the runs are alike.
void PrintDifferences(const Console& console, const ComparedRuns& compared);

} // namespace Bench
