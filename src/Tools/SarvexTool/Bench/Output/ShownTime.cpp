#include "Tools/SarvexTool/Bench/Output/ShownTime.h"

#include <algorithm>
#include <chrono>

namespace Bench {

namespace {

namespace chrono = std::chrono;

constexpr chrono::sys_seconds first = chrono::sys_days(chrono::year(0) / 1 / 1);
constexpr chrono::sys_seconds end = chrono::sys_days(chrono::year(10000) / 1 / 1);

chrono::sys_seconds MomentOf(std::int64_t seconds) {
    return chrono::sys_seconds(
        chrono::seconds(std::clamp(seconds, std::int64_t{first.time_since_epoch().count()},
                                   std::int64_t{end.time_since_epoch().count() - 1})));
}

std::string Digits(long long number, std::size_t count) {
    std::string text = std::to_string(number);
    return text.size() < count ? std::string(count - text.size(), '0') + text : text;
}

/// "08:05:00"
std::string ClockOf(chrono::sys_seconds moment) {
    const chrono::hh_mm_ss clock(moment - chrono::floor<chrono::days>(moment));
    return Digits(clock.hours().count(), 2) + ":" + Digits(clock.minutes().count(), 2) + ":" +
           Digits(clock.seconds().count(), 2);
}

} // namespace

std::string ShownDay(std::int64_t seconds) {
    const chrono::year_month_day date(chrono::floor<chrono::days>(MomentOf(seconds)));
    return Digits(int{date.year()}, 4) + "-" + Digits(unsigned{date.month()}, 2) + "-" +
           Digits(unsigned{date.day()}, 2);
}

std::string ShownMinute(std::int64_t seconds) {
    constexpr std::size_t upToMinutes = 5;
    return ShownDay(seconds) + " " + ClockOf(MomentOf(seconds)).substr(0, upToMinutes);
}

std::string IsoTime(std::int64_t seconds) {
    return ShownDay(seconds) + "T" + ClockOf(MomentOf(seconds)) + "Z";
}

} // namespace Bench
