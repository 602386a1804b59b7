#pragma once

#include "Tools/SarvexTool/Bench/Core/Limits.h"

#include <unordered_map>

namespace Bench {

/// Looks through many limits at once, with a bit for each: the limits that fit a measurement are
/// those whose bits all its values have.
class LimitBits {
public:
    /// The places of the limits among all lines, ascending. The lines stay where they are.
    LimitBits(const std::vector<Limit>& lines, std::vector<std::uint32_t> places);

    /// The place of the first limit that fits. Marks each that does.
    std::optional<std::uint32_t> Find(const Settings& settings, Chain chain,
                                      std::vector<bool>& hasFitted);

private:
    /// One bit for each limit, the first one lowest.
    using Bits = std::vector<std::uint64_t>;
    using FittingSettings = std::array<const Bits*, SettingCount>;

    /// A range of a limit. They are sorted by their first ends.
    struct RangeOf {
        SettingPattern::Range range;
        std::uint32_t index;
        /// The highest last end up to here.
        Decimal highest;
    };

    /// What the limits ask for in one setting.
    struct SettingBits {
        Bits fittingAny;
        std::unordered_map<const std::string*, std::vector<std::uint32_t>> fittingValue;
        std::vector<RangeOf> ranges;
        /// What was found out for a value; where too many are different, that of the last one.
        std::unordered_map<const std::string*, Bits> found;
        Bits last;
    };

    void Enter(std::size_t index);
    void SortRanges(SettingBits& setting);
    const Bits& FittingLimits(SettingBits& setting, const std::string* value);
    std::vector<std::uint32_t> AskingFor(const SettingBits& setting,
                                         const std::string* value) const;
    std::uint64_t FittingWord(std::size_t word, const FittingSettings& settings, Chain chain) const;
    void Mark(std::size_t word, std::uint64_t bits, std::vector<bool>& hasFitted);
    Bits MakeBits() const;

    const std::vector<Limit>& m_lines;
    std::vector<std::uint32_t> m_places;
    std::array<Bits, 3> m_fittingChain;
    Bits m_neverFitting;
    std::array<SettingBits, SettingCount> m_settings;
};

} // namespace Bench
