#pragma once

#include <cstddef>
#include <cstdint>

namespace Bench {

/// What the time of a run depends on beside its lines.
struct RunConditions {
    /// A device after whose lines the client makes a longer pause.
    bool isSlowDevice = false;
    /// How long one exchange with the daemon takes, in seconds.
    double exchangeSeconds = 0;
};

/// The MAC type of a slow device.
inline constexpr std::uint32_t SlowMacType = 16;

/// How long the client takes for a test file of so many lines, in seconds.
double EstimateSeconds(std::size_t lines, const RunConditions& conditions);

/// How many connections a system can carry at a time. The client keeps each one open until its
/// run has ended.
struct ConnectionLimits {
    std::uint64_t openFiles = 0;
    std::uint64_t ports = 0;
};

/// How many lines one run can have: each makes two connections.
std::uint64_t MostLines(const ConnectionLimits& limits);

} // namespace Bench
