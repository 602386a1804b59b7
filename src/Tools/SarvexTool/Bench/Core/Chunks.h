#pragma once

#include "Tools/SarvexTool/Bench/Core/Estimate.h"
#include "Tools/SarvexTool/Bench/Core/LineRange.h"

#include <string>
#include <vector>

namespace Bench {

/// Cuts lines into chunks of at most so many, in as few as that takes. Their sizes differ by at
/// most 1: all lines of a device take the same time. The larger ones come first.
std::vector<LineRange> CutLines(LineRange lines, LineNumber most);

/// How long so many benches take for chunks that one after the other are given to whichever bench
/// is free, in seconds. There is at least one bench.
double EstimateSeconds(const std::vector<LineRange>& chunks, std::size_t benches,
                       const RunConditions& conditions);

/// A test file with some of a plan's lines.
struct ManifestChunk {
    /// Its name in the manifest's folder.
    std::string file;
    /// Of its bytes, in 64 hexadecimal digits.
    std::string sha256;
    /// Of the plan; its header is line 1.
    LineRange lines;

    bool operator==(const ManifestChunk&) const = default;
};

} // namespace Bench
