#pragma once

#include <filesystem>

namespace Bench {

/// Writes a test file whose lines are all different, up to a million of them.
void WriteTestFile(const std::filesystem::path& file, int lines);

/// Writes the result.csv and the result.xml of a run of such a test file into a folder. Every tenth
/// power is higher by a number of dB.
void WriteResult(const std::filesystem::path& folder, int lines, int shift);

/// Writes a limit for each of the first lines of such a test file, and at last one for all others.
void WriteLimits(const std::filesystem::path& file, int lines);

} // namespace Bench
