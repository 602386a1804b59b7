#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Bench {

/// An exact decimal number: a power or limit in dBm, a difference in dB, an end of a range. Up to
/// nine digits before the point and nine after it, so that sums and differences of two never lose a
/// digit.
class Decimal {
public:
    static constexpr int FractionDigits = 9;
    static constexpr int IntegerDigits = 9;

    constexpr Decimal() = default;

    /// A whole number of up to nine digits.
    static constexpr Decimal FromInteger(std::int32_t value) {
        return FromUnits(std::int64_t{value} * UnitsPerOne);
    }

    /// A number of units of 10^-9.
    static constexpr Decimal FromUnits(std::int64_t units) {
        Decimal decimal;
        decimal.m_units = units;
        return decimal;
    }

    /// Reads an optional minus sign, digits, and optionally a point with digits after it; "12."
    /// is 12. Zeros that change nothing may be there in any number. Nothing for any other text, and
    /// for more digits than a Decimal holds (HasDecimalForm tells the two apart).
    static std::optional<Decimal> Parse(std::string_view text);

    /// The shortest text that Parse reads as this number: no zeros at the end of the fraction, no
    /// exponent, a point whatever the locale.
    std::string ToText() const;

    /// For averages and drawings, where the last digits do not matter.
    constexpr double ToDouble() const { return static_cast<double>(m_units) / UnitsPerOne; }

    constexpr std::int64_t Units() const { return m_units; }

    constexpr Decimal operator-() const { return FromUnits(-m_units); }
    constexpr Decimal operator+(Decimal other) const { return FromUnits(m_units + other.m_units); }
    constexpr Decimal operator-(Decimal other) const { return FromUnits(m_units - other.m_units); }
    // The check takes the zero of the comparison for a pointer.
    constexpr auto operator<=>(const Decimal&) const = default; // NOLINT(modernize-use-nullptr)

private:
    static constexpr std::int64_t UnitsPerOne = 1'000'000'000;

    std::int64_t m_units = 0;
};

/// The number without its sign.
constexpr Decimal Magnitude(Decimal number) {
    return number < Decimal() ? -number : number;
}

/// Whether the text has the form of a decimal, however many digits it has.
bool HasDecimalForm(std::string_view text);

} // namespace Bench
