#include "Tools/SarvexTool/Bench/Core/LimitBits.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace Bench {

namespace {

constexpr std::size_t bitsInWord = 64;

/// So many values of a setting are remembered, which is more than plans have channels. A table of a
/// million different ones must not take memory for each.
constexpr std::size_t mostRemembered = 1000;

void SetBit(std::vector<std::uint64_t>& bits, std::size_t index) {
    bits[index / bitsInWord] |= std::uint64_t{1} << (index % bitsInWord);
}

} // namespace

LimitBits::LimitBits(const std::vector<Limit>& lines, std::vector<std::uint32_t> places)
    : m_lines(lines), m_places(std::move(places)) {
    m_neverFitting = MakeBits();
    m_fittingChain.fill(MakeBits());
    for (SettingBits& setting : m_settings)
        setting.fittingAny = MakeBits();
    for (std::size_t index = 0; index < m_places.size(); ++index)
        Enter(index);
    for (SettingBits& setting : m_settings)
        SortRanges(setting);
}

void LimitBits::Enter(std::size_t index) {
    SetBit(m_neverFitting, index);
    const auto number = static_cast<std::uint32_t>(index);
    Limit limit = m_lines[m_places[index]];
    for (std::size_t place = 0; place < SettingCount; ++place) {
        SettingBits& setting = m_settings[place];
        const SettingPattern* const pattern = std::exchange(limit.settings[place], nullptr);
        if (pattern == nullptr) {
            SetBit(setting.fittingAny, index);
            continue;
        }
        for (const std::string* const value : pattern->values)
            setting.fittingValue[value].push_back(number);
        for (const SettingPattern::Range& range : pattern->ranges)
            setting.ranges.push_back({range, number, range.last});
    }
    // Without its patterns the limit fits by its chains alone.
    for (const Chain chain : {Chain::A, Chain::B, Chain::None}) {
        if (limit.Fits(Settings(), chain))
            SetBit(m_fittingChain[static_cast<std::size_t>(chain)], index);
    }
}

void LimitBits::SortRanges(SettingBits& setting) {
    std::sort(setting.ranges.begin(), setting.ranges.end(),
              [](const RangeOf& left, const RangeOf& right) {
                  return left.range.first < right.range.first;
              });
    for (std::size_t index = 1; index < setting.ranges.size(); ++index)
        setting.ranges[index].highest =
            std::max(setting.ranges[index].highest, setting.ranges[index - 1].highest);
}

std::optional<std::uint32_t> LimitBits::Find(const Settings& settings, Chain chain,
                                             std::vector<bool>& hasFitted) {
    FittingSettings fitting;
    for (std::size_t setting = 0; setting < SettingCount; ++setting)
        fitting[setting] =
            &FittingLimits(m_settings[setting], settings[static_cast<Setting>(setting)]);
    std::optional<std::uint32_t> first;
    for (std::size_t word = 0; word < m_neverFitting.size(); ++word) {
        // Once every limit has fitted something, the search ends with the first that fits.
        if (first && m_neverFitting[word] == 0)
            continue;
        const std::uint64_t bits = FittingWord(word, fitting, chain);
        Mark(word, bits & m_neverFitting[word], hasFitted);
        if (!first && bits != 0)
            first = m_places[word * bitsInWord + static_cast<std::size_t>(std::countr_zero(bits))];
    }
    return first;
}

void LimitBits::Mark(std::size_t word, std::uint64_t bits, std::vector<bool>& hasFitted) {
    m_neverFitting[word] &= ~bits;
    for (; bits != 0; bits &= bits - 1)
        hasFitted[m_places[word * bitsInWord + static_cast<std::size_t>(std::countr_zero(bits))]] =
            true;
}

std::uint64_t LimitBits::FittingWord(std::size_t word, const FittingSettings& settings,
                                     Chain chain) const {
    std::uint64_t bits = m_fittingChain[static_cast<std::size_t>(chain)][word];
    for (const Bits* fitting : settings)
        bits &= (*fitting)[word];
    return bits;
}

const LimitBits::Bits& LimitBits::FittingLimits(SettingBits& setting, const std::string* value) {
    if (value == nullptr || (setting.fittingValue.empty() && setting.ranges.empty()))
        return setting.fittingAny;
    const auto known = setting.found.find(value);
    if (known != setting.found.end())
        return known->second;
    const std::vector<std::uint32_t> asking = AskingFor(setting, value);
    // Most values of a large table are in no limit.
    if (asking.empty())
        return setting.fittingAny;
    Bits& bits = setting.found.size() < mostRemembered ? setting.found[value] : setting.last;
    bits = setting.fittingAny;
    for (const std::uint32_t index : asking)
        SetBit(bits, index);
    return bits;
}

std::vector<std::uint32_t> LimitBits::AskingFor(const SettingBits& setting,
                                                const std::string* value) const {
    std::vector<std::uint32_t> asking;
    const auto found = setting.fittingValue.find(value);
    if (found != setting.fittingValue.end())
        asking = found->second;
    const auto number = setting.ranges.empty() ? std::nullopt : Decimal::Parse(*value);
    if (!number)
        return asking;
    auto place = std::upper_bound(
        setting.ranges.begin(), setting.ranges.end(), *number,
        [](Decimal wanted, const RangeOf& range) { return wanted < range.range.first; });
    while (place != setting.ranges.begin() && (--place)->highest >= *number) {
        if (place->range.last >= *number)
            asking.push_back(place->index);
    }
    return asking;
}

LimitBits::Bits LimitBits::MakeBits() const {
    return Bits((m_places.size() + bitsInWord - 1) / bitsInWord);
}

} // namespace Bench
