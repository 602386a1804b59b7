#include "Tools/SarvexTool/Bench/Files/FileTime.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"

#include <chrono>
#include <system_error>

namespace Bench {

namespace {

std::string TwoDigits(unsigned number) {
    constexpr unsigned firstOfTwo = 10;
    return (number < firstOfTwo ? "0" : "") + std::to_string(number);
}

} // namespace

std::string InWords(std::filesystem::file_time_type time) {
    namespace chrono = std::chrono;
    const auto moment = chrono::floor<chrono::minutes>(chrono::file_clock::to_sys(time));
    const auto day = chrono::floor<chrono::days>(moment);
    const chrono::year_month_day date(day);
    const chrono::hh_mm_ss clock(moment - day);
    return std::to_string(int{date.year()}) + "-" + TwoDigits(unsigned{date.month()}) + "-" +
           TwoDigits(unsigned{date.day()}) + " " +
           TwoDigits(static_cast<unsigned>(clock.hours().count())) + ":" +
           TwoDigits(static_cast<unsigned>(clock.minutes().count())) + " UTC";
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
