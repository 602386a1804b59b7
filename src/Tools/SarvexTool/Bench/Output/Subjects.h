#pragma once

#include "Tools/SarvexTool/Bench/Core/DeviceFacts.h"
#include "Tools/SarvexTool/Bench/Core/Differences.h"
#include "Tools/SarvexTool/Bench/Core/Verdicts.h"

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
};

/// What the outputs of compare show.
struct ComparedRuns {
    NamedRun oldResult;
    NamedRun newResult;
    Decimal tolerance;
    const Differences& differences;
};

} // namespace Bench
