#include "Tools/SarvexTool/Bench/Files/UtcTime.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"

#include <algorithm>
#include <system_error>

namespace Bench {

namespace {

namespace chrono = std::chrono;

std::string Digits(long long number, std::size_t count) {
    std::string text = std::to_string(number);
    return text.size() < count ? std::string(count - text.size(), '0') + text : text;
}

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

/// Takes a number of so many digits off the text, and the character after it where there is to be
/// one; nothing for anything else.
std::optional<int> TakeNumber(std::string_view& text, std::size_t digits, char after) {
    constexpr int ten = 10;
    const std::size_t size = digits + std::size_t{after != '\0'};
    if (text.size() < size || !std::all_of(text.begin(), text.begin() + digits, IsDigit) ||
        (after != '\0' && text[digits] != after))
        return std::nullopt;
    int number = 0;
    for (const char digit : text.substr(0, digits))
        number = number * ten + (digit - '0');
    text.remove_prefix(size);
    return number;
}

std::optional<chrono::sys_days> TakeDay(std::string_view& text, char after) {
    const std::optional<int> year = TakeNumber(text, 4, '-');
    const std::optional<int> month = year ? TakeNumber(text, 2, '-') : std::nullopt;
    const std::optional<int> day = month ? TakeNumber(text, 2, after) : std::nullopt;
    // The clock counts nanoseconds, which reach from 1677 to 2262.
    constexpr int firstYear = 1678;
    constexpr int lastYear = 2261;
    if (!day || *year < firstYear || *year > lastYear)
        return std::nullopt;
    const chrono::year_month_day date(chrono::year(*year),
                                      chrono::month(static_cast<unsigned>(*month)),
                                      chrono::day(static_cast<unsigned>(*day)));
    return date.ok() ? std::optional(chrono::sys_days(date)) : std::nullopt;
}

/// "08:05:00", up to 23:59:59.
std::optional<chrono::seconds> TakeTime(std::string_view& text) {
    constexpr int hours = 24;
    constexpr int sixty = 60;
    const std::optional<int> hour = TakeNumber(text, 2, ':');
    const std::optional<int> minute = hour ? TakeNumber(text, 2, ':') : std::nullopt;
    const std::optional<int> second = minute ? TakeNumber(text, 2, '\0') : std::nullopt;
    if (!second || *hour >= hours || *minute >= sixty || *second >= sixty)
        return std::nullopt;
    return chrono::hours(*hour) + chrono::minutes(*minute) + chrono::seconds(*second);
}

} // namespace

std::optional<chrono::system_clock::time_point> ParseUtcTime(std::string_view text) {
    const std::optional<chrono::sys_days> day = TakeDay(text, 'T');
    const std::optional<chrono::seconds> time = day ? TakeTime(text) : std::nullopt;
    if (!time)
        return std::nullopt;
    chrono::milliseconds fraction{0};
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        const std::optional<int> number = TakeNumber(text, 3, '\0');
        if (!number)
            return std::nullopt;
        fraction = chrono::milliseconds(*number);
    }
    return text == "Z" ? std::optional<chrono::system_clock::time_point>(*day + *time + fraction)
                       : std::nullopt;
}

std::optional<chrono::system_clock::time_point> ParseUtcDay(std::string_view text) {
    const std::optional<chrono::sys_days> day = TakeDay(text, '\0');
    return day && text.empty() ? std::optional<chrono::system_clock::time_point>(*day)
                               : std::nullopt;
}

std::string UtcTime(std::chrono::system_clock::time_point time) {
    const auto moment = chrono::floor<chrono::milliseconds>(time);
    const auto day = chrono::floor<chrono::days>(moment);
    const chrono::year_month_day date(day);
    const chrono::hh_mm_ss clock(moment - day);
    return Digits(int{date.year()}, 4) + "-" + Digits(unsigned{date.month()}, 2) + "-" +
           Digits(unsigned{date.day()}, 2) + "T" + Digits(clock.hours().count(), 2) + ":" +
           Digits(clock.minutes().count(), 2) + ":" + Digits(clock.seconds().count(), 2) + "." +
           Digits(clock.subseconds().count(), 3) + "Z";
}

std::string InWords(std::filesystem::file_time_type time) {
    namespace chrono = std::chrono;
    const auto moment = chrono::floor<chrono::minutes>(chrono::file_clock::to_sys(time));
    const auto day = chrono::floor<chrono::days>(moment);
    const chrono::year_month_day date(day);
    const chrono::hh_mm_ss clock(moment - day);
    return std::to_string(int{date.year()}) + "-" + Digits(unsigned{date.month()}, 2) + "-" +
           Digits(unsigned{date.day()}, 2) + " " + Digits(clock.hours().count(), 2) + ":" +
           Digits(clock.minutes().count(), 2) + " UTC";
}

std::optional<std::string> LastWritten(const std::string& name) {
    const std::filesystem::path path = PathOf(name);
    std::error_code error;
    if (name == StandardStreamName || !std::filesystem::is_regular_file(path, error))
        return std::nullopt;
    const auto time = std::filesystem::last_write_time(path, error);
    return error ? std::nullopt : std::optional(InWords(time));
}

} // namespace Bench
