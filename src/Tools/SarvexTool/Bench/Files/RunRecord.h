#pragma once

#include "Tools/SarvexTool/Bench/Core/Measurements.h"
#include "Tools/SarvexTool/Bench/Core/Sources.h"

#include <cstddef>
#include <optional>
#include <string>

namespace Bench {

/// What the run.json beside a result tells of its measurements. Without one, it tells nothing.
struct RunRecord {
    /// How many lines the test file had.
    std::optional<std::size_t> linesTotal;
    /// Whether it calls the run complete, where it does not tell the number of lines.
    bool isCalledComplete = false;
    /// Whether it is merged, but of no run at all.
    bool isOfNoRun = false;
    /// Where the lines were measured: the runs that this one was merged from, else its own place,
    /// which is that of all lines.
    Sources sources;
    RunPlace place;

    /// Whether a run with so many journalled lines ended before its last one. A run that is not
    /// known to be complete did.
    std::optional<EarlyEnd> EarlyEndAfter(std::size_t journalledLines) const;
};

/// Somebody else may have written the file: keys that are missing, or that nobody asks for, do no
/// harm. Throws BadInput when it is there and cannot be read, is no JSON, or has a value that is
/// not as it should be.
RunRecord ReadRunRecord(const std::string& factsName);

} // namespace Bench
