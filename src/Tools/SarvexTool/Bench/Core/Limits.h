#pragma once

#include "Tools/SarvexTool/Bench/Core/Measurements.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace Bench {

/// Which values of one setting a limit is for.
struct SettingPattern {
    /// Both ends belong to the range.
    struct Range {
        Decimal first;
        Decimal last;
    };

    /// Fits every value and the unknown one.
    bool isAny = true;
    /// Compared as exact texts.
    std::vector<std::string> values;
    /// Compared as numbers; a value that is no decimal is in none.
    std::vector<Range> ranges;

    /// Whether the pattern fits a value; null stands for an unknown setting.
    bool Fits(const std::string* value) const;
};

/// One line of a table of limits.
struct Limit {
    LineNumber line = 0;
    std::array<SettingPattern, SettingCount> settings;
    bool isForChainA = true;
    bool isForChainB = true;
    /// In dBm; the bounds belong to what passes. Nothing where there is no bound.
    std::optional<Decimal> minimum;
    std::optional<Decimal> maximum;
};

/// Finds the first limit of a table that fits a measurement. What a value fits is looked up once
/// for each text, so that the time of a search does not depend on how the patterns look.
class LimitTable {
public:
    explicit LimitTable(std::vector<Limit> limits);

    const std::vector<Limit>& Limits() const { return m_limits; }

    /// The first that fits; null when none does. The settings' texts belong to one pool, always the
    /// same.
    const Limit* Find(const Settings& settings, Chain chain);

    /// The limits that fitted nothing that was looked for until now, first or not.
    std::vector<const Limit*> NeverFitting() const;

private:
    /// One bit for each limit, the first one lowest.
    using Bits = std::vector<std::uint64_t>;
    using FittingSettings = std::array<const Bits*, SettingCount>;

    const Bits& FittingLimits(std::size_t setting, const std::string* value);
    std::uint64_t FittingWord(std::size_t word, const FittingSettings& settings, Chain chain) const;
    Bits MakeBits() const;

    std::vector<Limit> m_limits;
    std::array<Bits, 3> m_fittingChain;
    Bits m_neverFitting;
    std::array<std::unordered_map<const std::string*, Bits>, SettingCount> m_fittingSetting;
};

} // namespace Bench
