#pragma once

#include "Tools/SarvexTool/Bench/Core/LineRange.h"

#include <string>

namespace Bench {

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
