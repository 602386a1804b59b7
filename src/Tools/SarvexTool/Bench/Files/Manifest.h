#pragma once

#include "Tools/SarvexTool/Bench/Core/Chunks.h"

#include <string>
#include <string_view>
#include <vector>

namespace Bench {

/// The files of a folder that holds a plan in chunks, beside the chunks themselves.
inline constexpr const char* ManifestName = "manifest.json";
inline constexpr const char* PlanCopyName = "plan.csv";

/// The test file that was cut.
struct ManifestPlan {
    /// Its path, with all folders.
    std::string name;
    /// Of its bytes, in 64 hexadecimal digits.
    std::string sha256;
    /// Without its header; at least one.
    LineNumber lines = 0;

    bool operator==(const ManifestPlan&) const = default;
};

/// What a plan was cut into.
struct Manifest {
    std::string programVersion;
    ManifestPlan plan;
    /// In the order of their lines. Together they hold each line of the plan once.
    std::vector<ManifestChunk> chunks;

    bool operator==(const Manifest&) const = default;
};

/// The name of a chunk of so many: its number from 1, in at least four digits.
std::string ChunkName(std::size_t number, std::size_t count);

/// Whether a file could be called so that holds a chunk.
bool IsChunkName(std::string_view name);

/// As JSON, of several lines.
std::string ToJsonText(const Manifest& manifest);

/// Reads what ToJsonText has written. Unknown keys are ignored. The name is for the problems only.
/// Throws BadInput, also where the chunks do not hold each line once.
Manifest ParseManifest(std::string_view text, const std::string& name);

/// Throws BadInput when the file cannot be read or holds no manifest.
Manifest ReadManifest(const std::string& name);

} // namespace Bench
