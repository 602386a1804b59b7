#pragma once

#include "Tools/SarvexTool/Bench/Core/ChunkChoice.h"
#include "Tools/SarvexTool/Bench/Files/RunFacts.h"

#include <string>
#include <vector>

namespace Bench {

/// A folder with a run, and its facts.
struct RunFolder {
    /// Seen from the folder that the search began with, with slashes between the names.
    std::string name;
    RunFacts facts;
};

/// The runs in the folder "runs" of a folder, at any depth: each folder below it that holds a
/// run.json, in the byte order of their names. Links are not followed. Where there is no such
/// folder there is no run. Facts that cannot be read go to the problems. Throws BadInput when a
/// folder cannot be read.
///
/// The folder ends in a slash, or is empty.
std::vector<RunFolder> FindRuns(const std::string& folder, ProblemList& problems);

/// What a run is chosen by. It is complete when its facts say so; else its journal tells how many
/// lines it has, up to an entry that is damaged. The folder is that which the search began with.
FoundRun FoundRunOf(const std::string& folder, const RunFolder& run);

} // namespace Bench
