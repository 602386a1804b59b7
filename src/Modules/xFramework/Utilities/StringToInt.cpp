#include "Modules/xFramework/Utilities/StringToInt.h"

#include <charconv>
#include <stdexcept>
#include <system_error>

namespace Utilities {

std::int32_t StringToInt(const std::string& text) {
    constexpr const char* whiteSpace = " \t\n\v\f\r";
    const std::size_t start = text.find_first_not_of(whiteSpace);
    const char* first = start == std::string::npos ? text.data() + text.size() : &text[start];
    const char* const last = text.data() + text.size();
    // from_chars takes a minus sign but no plus sign.
    const bool hasPlus = first != last && *first == '+' && (last - first) > 1 && first[1] != '-';
    std::int32_t value = 0;
    const auto [end, error] = std::from_chars(hasPlus ? first + 1 : first, last, value);
    if (error == std::errc::result_out_of_range)
        throw std::out_of_range("stoi argument out of range");
    if (error != std::errc{})
        throw std::invalid_argument("invalid stoi argument");
    return value;
}

} // namespace Utilities
