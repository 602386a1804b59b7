#pragma once

#include "Tools/SarvexTool/Bench/Output/Subjects.h"

#include <ostream>
#include <string>
#include <string_view>

namespace Bench {

/// Writes a table for spreadsheets: a line for each measurement, with its settings ("-" for an
/// unknown one), power, limits, verdict and margin, and why there is no power; where the run tells
/// of some line where it was measured, also bench, device and attempt.
void WriteCsv(std::ostream& stream, const JudgedRun& judged);

/// A text as a cell of such a table. What a spreadsheet would take for a formula gets an apostrophe
/// in front; numbers, and "-" alone, do not. What could harm a terminal is made harmless.
std::string CsvCell(std::string_view text);

} // namespace Bench
