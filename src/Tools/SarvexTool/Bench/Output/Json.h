#pragma once

#include "Tools/SarvexTool/Bench/Output/Subjects.h"

#include <ostream>

namespace Bench {

/// Writes the form that docs/judgement.schema.json describes.
void WriteJson(std::ostream& stream, const JudgedRun& judged);

/// Writes the form that docs/comparison.schema.json describes.
void WriteJson(std::ostream& stream, const ComparedRuns& compared);

} // namespace Bench
