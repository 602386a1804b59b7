#pragma once

#include "Tools/SarvexTool/Bench/Core/Chunks.h"
#include "Tools/SarvexTool/Bench/Core/ProblemList.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Bench {

/// A run that was found where the runs of the chunks are.
struct FoundRun {
    /// As messages name it.
    std::string directory;
    /// The name of its test file, without folders, and the SHA-256 of its bytes.
    std::string testFile;
    std::string sha256;
    bool isComplete = false;
    /// How many of its lines are finished.
    std::size_t linesDone = 0;
};

/// Which runs a plan's result is put together from.
struct ChunkChoice {
    struct Used {
        /// The place of the run among those that were found.
        std::size_t run = 0;
        /// How many of the chunk's lines it has, from the first one on; at least one.
        std::size_t lines = 0;

        bool operator==(const Used&) const = default;
    };
    /// For each chunk its run; nothing for a chunk of which no line is finished.
    std::vector<std::optional<Used>> used;

    struct Unused {
        std::size_t run = 0;
        std::size_t chunk = 0;
        /// How many lines it has finished.
        std::size_t lines = 0;

        bool operator==(const Unused&) const = default;
    };
    /// All other runs of the chunks, in the order in which they were found.
    std::vector<Unused> unused;

    /// How many chunks have a complete run.
    std::size_t complete = 0;
};

/// Chooses the one complete run of each chunk, or, where it is partial and there is none, the first
/// of those with the most finished lines. Chunks without a complete run (unless it is partial),
/// chunks with more than one, and runs of no chunk go to the problems.
ChunkChoice ChooseRuns(std::span<const ManifestChunk> chunks, std::span<const FoundRun> runs,
                       bool isPartial, ProblemList& problems);

} // namespace Bench
