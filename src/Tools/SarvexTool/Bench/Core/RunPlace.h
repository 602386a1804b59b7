#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Bench {

/// Where a run has measured, and which attempt it is, as far as somebody has told it. Any texts.
struct RunPlace {
    std::optional<std::string> bench;
    std::optional<std::string> device;
    /// Counts from 1.
    std::optional<std::uint32_t> attempt;

    bool operator==(const RunPlace&) const = default;
};

} // namespace Bench
