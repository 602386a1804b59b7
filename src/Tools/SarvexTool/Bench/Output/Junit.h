#pragma once

#include "Tools/SarvexTool/Bench/Output/Subjects.h"

#include <ostream>
#include <string>
#include <string_view>

namespace Bench {

/// Writes a report as continuous integration reads it: a suite for each band and bandwidth, in the
/// order in which they appear, and a case for each measurement, which failed when it did not pass.
/// A case is named after its settings and chain and not after its line, so that it keeps its
/// history when lines move. A run that ended early has one more case, which failed.
void WriteJunit(std::ostream& stream, const JudgedRun& judged);

/// The same with a case for each measurement of either run, which failed when the runs differ in
/// it.
void WriteJunit(std::ostream& stream, const ComparedRuns& compared);

/// A text of any bytes as an attribute's value, without the quotation marks. What XML cannot hold
/// is made visible like what could harm a terminal.
std::string XmlText(std::string_view text);

} // namespace Bench
