#pragma once

#include "Tools/SarvexTool/Bench/Core/Limits.h"

#include <unordered_map>

namespace Bench {

/// Looks through many limits at once, with a bit for each: which of them a value fits is found out
/// once for each text, and the limits that fit a measurement are those whose bits all its values
/// have.
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

    const Bits& FittingLimits(std::size_t setting, const std::string* value);
    std::uint64_t FittingWord(std::size_t word, const FittingSettings& settings, Chain chain) const;
    void Mark(std::size_t word, std::uint64_t bits, std::vector<bool>& hasFitted);
    Bits MakeBits() const;

    const std::vector<Limit>& m_lines;
    std::vector<std::uint32_t> m_places;
    std::array<Bits, 3> m_fittingChain;
    Bits m_neverFitting;
    /// For each setting, the limits that fit any value of it.
    std::array<Bits, SettingCount> m_fittingAny;
    std::array<std::unordered_map<const std::string*, Bits>, SettingCount> m_fittingSetting;
};

} // namespace Bench
