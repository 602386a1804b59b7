#pragma once

#include "Tools/SarvexTool/Bench/Core/Kept.h"

#include <ostream>
#include <string>
#include <vector>

namespace Bench {

/// "short.csv, measured 2026-03-09 08:05 UTC on bench 1 (1a2b3c4d)", harmless.
std::string PhraseOf(const KeptFacts& run);

/// What a run has become that was added, in one line.
void PrintAdded(std::ostream& stream, const KeptFacts& run, bool isNew);

/// A table of runs, each in one line, and how many they are.
void PrintRuns(std::ostream& stream, const std::vector<KeptFacts>& runs,
               const std::vector<KeptBaseline>& baselines);

/// All that is told of a run, and its files.
void PrintRun(std::ostream& stream, const KeptFacts& run, const std::vector<KeptFile>& files,
              const std::vector<KeptBaseline>& baselines);

/// A table of baselines and their runs. Those of runs that are not given are left out.
void PrintBaselines(std::ostream& stream, const std::vector<KeptBaseline>& baselines,
                    const std::vector<KeptFacts>& runs);

} // namespace Bench
