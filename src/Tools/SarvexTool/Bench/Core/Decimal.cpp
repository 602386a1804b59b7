#include "Tools/SarvexTool/Bench/Core/Decimal.h"

#include <algorithm>

namespace Bench {

namespace {

constexpr std::string_view digits = "0123456789";

/// The parts of a text that has the form of a decimal.
struct Parts {
    bool isNegative;
    std::string_view integer;
    std::string_view fraction;
};

std::optional<Parts> Split(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    if (isNegative)
        text.remove_prefix(1);
    const std::size_t point = std::min(text.find('.'), text.size());
    const std::string_view integer = text.substr(0, point);
    const std::string_view fraction = point == text.size() ? "" : text.substr(point + 1);
    const bool areDigits = integer.find_first_not_of(digits) == std::string_view::npos &&
                           fraction.find_first_not_of(digits) == std::string_view::npos;
    if (integer.empty() || !areDigits)
        return std::nullopt;
    return Parts{isNegative, integer, fraction};
}

std::string_view WithoutLeadingZeros(std::string_view number) {
    return number.substr(std::min(number.find_first_not_of('0'), number.size()));
}

std::string_view WithoutTrailingZeros(std::string_view fraction) {
    return fraction.substr(0, fraction.find_last_not_of('0') + 1);
}

std::int64_t AppendDigits(std::int64_t number, std::string_view text) {
    constexpr int base = 10;
    for (const char digit : text)
        number = number * base + (digit - '0');
    return number;
}

} // namespace

std::optional<Decimal> Decimal::Parse(std::string_view text) {
    const std::optional<Parts> parts = Split(text);
    if (!parts)
        return std::nullopt;
    const std::string_view integer = WithoutLeadingZeros(parts->integer);
    const std::string_view fraction = WithoutTrailingZeros(parts->fraction);
    if (integer.size() > IntegerDigits || fraction.size() > FractionDigits)
        return std::nullopt;
    std::string padded(fraction);
    padded.resize(FractionDigits, '0');
    const std::int64_t units = AppendDigits(AppendDigits(0, integer), padded);
    return FromUnits(parts->isNegative ? -units : units);
}

std::string Decimal::ToText() const {
    const Decimal magnitude = Magnitude(*this);
    std::string fraction = std::to_string(magnitude.m_units % UnitsPerOne);
    fraction.insert(0, FractionDigits - fraction.size(), '0');
    std::string text = m_units < 0 ? "-" : "";
    text += std::to_string(magnitude.m_units / UnitsPerOne);
    const std::string_view shown = WithoutTrailingZeros(fraction);
    if (!shown.empty())
        text.append(".").append(shown);
    return text;
}

bool HasDecimalForm(std::string_view text) {
    return Split(text).has_value();
}

} // namespace Bench
