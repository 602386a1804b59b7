#pragma once

#include "Tools/SarvexTool/Bench/Core/Kept.h"

#include <ostream>
#include <vector>

namespace Bench {

/// Runs with all that is told of them, in the given order.
void WriteRunsJson(std::ostream& stream, const std::vector<KeptFacts>& runs,
                   const std::vector<KeptBaseline>& baselines);

/// One run, with its files.
void WriteRunJson(std::ostream& stream, const KeptFacts& run, const std::vector<KeptFile>& files,
                  const std::vector<KeptBaseline>& baselines);

/// Baselines with their runs' hashes.
void WriteBaselinesJson(std::ostream& stream, const std::vector<KeptBaseline>& baselines);

} // namespace Bench
