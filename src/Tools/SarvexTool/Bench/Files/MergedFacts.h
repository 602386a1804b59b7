#pragma once

#include "Tools/SarvexTool/Bench/Core/ChunkChoice.h"
#include "Tools/SarvexTool/Bench/Files/FoundRuns.h"
#include "Tools/SarvexTool/Bench/Files/RunFacts.h"

#include <span>

namespace Bench {

/// The facts of the run that is put together from those of a plan's chunks. Those that it can only
/// have one of are those of its first lines; where others differ in what matters for a power, a
/// note says so, and another one where a last stop was not confirmed. A first command that a daemon
/// has refused is that of the whole. The number of lines and the exit code are left to the caller.
///
/// The runs are those that were found, in the order of the choice's places.
RunFacts MergedFacts(std::span<const ManifestChunk> chunks, std::span<const RunFolder> runs,
                     const ChunkChoice& choice);

} // namespace Bench
