#pragma once

#include "Tools/SarvexTool/Bench/Core/Kept.h"
#include "Tools/SarvexTool/Bench/Core/Measurements.h"
#include "Tools/SarvexTool/Bench/Files/ResultFile.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Bench {

/// What is told of a run beside its files, and which runs are taken.
struct KeepOptions {
    std::optional<std::string> bench = {};
    std::optional<std::string> device = {};
    std::optional<std::string> firmware = {};
    std::optional<std::string> note = {};
    /// In seconds since 1970, UTC.
    std::optional<std::int64_t> measuredAt = {};
    /// Whether a run is taken too that ended early, or whose last stop was not confirmed.
    bool isPartial = false;
};

/// A run as it is kept.
struct RunToKeep {
    KeptFacts facts;
    /// Its texts belong to the pool that it was read with.
    RunResult result;
    /// In the byte order of their names.
    std::vector<KeptContent> files;
    /// Whether nothing but the result's file tells when it was measured.
    bool isTimeOfFile = false;
    /// For each configuration, the place in the facts' parts of where it was measured.
    std::vector<std::uint32_t> parts;
};

/// Reads a run directory, a folder with a result.csv, or a result.csv. It is judged only by limits
/// that its own run.json names. Throws BadInput for a run that cannot be read, that goes on, can be
/// resumed and is not to be kept so, and where the options say something else than the run itself;
/// InUse when it goes on.
RunToKeep ReadRunToKeep(const std::string& name, const KeepOptions& options, TextPool& texts);

/// A run as its kept files tell it. The table's name is for the problems only. Throws BadInput.
Result ReadKeptResult(const std::vector<KeptContent>& files, const std::string& table,
                      TextPool& texts);

/// What a run is known by: the SHA-256 of its files, each with its name and its size in a line of
/// their own before it. The files are in the byte order of their names.
std::string HashOf(const std::vector<KeptContent>& files);

/// Writes the files of a kept run into a folder, which is made with all of them or not at all.
/// Throws BadOutput when there is something in its place but an empty folder, and for a file's name
/// that no run has; InUse when somebody else makes it.
void WriteKeptFiles(const std::string& folder, const std::vector<KeptContent>& files);

} // namespace Bench
