#pragma once

#include "Tools/SarvexTool/Bench/Core/Differences.h"
#include "Tools/SarvexTool/Bench/Core/Verdicts.h"

#include <optional>
#include <string>

namespace Bench {

/// A run as it is shown: with the name that the user gave it.
struct NamedRun {
    std::string name;
    const RunResult& run;
    const DeviceFacts& device;
};

/// What the outputs of judge show.
struct JudgedRun {
    NamedRun result;
    std::string limitsName;
    const Judgements& judgements;
    /// What the counts are grouped by in place of the band.
    std::optional<PlacePart> groupBy = std::nullopt;
};

/// What the outputs of compare show.
struct ComparedRuns {
    NamedRun oldResult;
    NamedRun newResult;
    Decimal tolerance;
    const Differences& differences;
    /// What the shifts are grouped by in place of band and rate.
    std::optional<PlacePart> groupBy = std::nullopt;
};

} // namespace Bench
