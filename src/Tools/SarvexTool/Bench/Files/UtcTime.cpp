#include "Tools/SarvexTool/Bench/Files/UtcTime.h"

namespace Bench {

namespace {

std::string Digits(long long number, std::size_t count) {
    std::string text = std::to_string(number);
    return text.size() < count ? std::string(count - text.size(), '0') + text : text;
}

} // namespace

std::string UtcTime(std::chrono::system_clock::time_point time) {
    namespace chrono = std::chrono;
    const auto moment = chrono::floor<chrono::milliseconds>(time);
    const auto day = chrono::floor<chrono::days>(moment);
    const chrono::year_month_day date(day);
    const chrono::hh_mm_ss clock(moment - day);
    return Digits(int{date.year()}, 4) + "-" + Digits(unsigned{date.month()}, 2) + "-" +
           Digits(unsigned{date.day()}, 2) + "T" + Digits(clock.hours().count(), 2) + ":" +
           Digits(clock.minutes().count(), 2) + ":" + Digits(clock.seconds().count(), 2) + "." +
           Digits(clock.subseconds().count(), 3) + "Z";
}

} // namespace Bench
