#pragma once

#include "Tools/SarvexTool/Bench/Output/TrendPhrases.h"

#include <ostream>

namespace Bench {

/// Writes the form that docs/history.md describes.
void WriteJson(std::ostream& stream, const NamedTrend& named);

} // namespace Bench
