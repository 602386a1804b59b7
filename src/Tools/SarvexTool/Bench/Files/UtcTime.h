#pragma once

#include <chrono>
#include <string>

namespace Bench {

/// A moment as ISO 8601 writes it, to the millisecond: "2026-03-09T08:05:00.250Z".
std::string UtcTime(std::chrono::system_clock::time_point time);

} // namespace Bench
