#pragma once

#include "Tools/SarvexTool/Bench/Core/Sources.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Bench {

/// A run of some lines that a merged run was made from. Moments are as UtcTime writes them.
struct RunSource {
    /// The lines of the plan that are its own; its header is line 1.
    LineRange lines;
    /// Its folder, seen from that of the plan's parts, with slashes between the names.
    std::string directory;
    RunPlace place;
    /// HOST:PORT
    std::string daemon;
    std::optional<std::int32_t> macType;
    std::optional<std::string> countryCode;
    std::string started;
    std::optional<std::string> ended;

    bool operator==(const RunSource&) const = default;
};

/// A run of some lines that a merged run has not used.
struct OtherAttempt {
    /// With the lines that it was to run.
    RunSource run;
    std::uint64_t linesDone = 0;
    /// As in its facts.
    std::string outcome;

    bool operator==(const OtherAttempt&) const = default;
};

} // namespace Bench
