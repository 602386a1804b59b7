#pragma once

#include <cstdint>
#include <string>

namespace Bench {

/// A moment in seconds since 1970, UTC, as people read it: "2026-03-09". One before year 0 or after
/// 9999 is shown as the nearest of these.
std::string ShownDay(std::int64_t seconds);

/// The same with hours and minutes: "2026-03-09 08:05".
std::string ShownMinute(std::int64_t seconds);

/// The same to the second as ISO 8601 writes it: "2026-03-09T08:05:00Z".
std::string IsoTime(std::int64_t seconds);

} // namespace Bench
