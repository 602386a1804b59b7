#include "Tools/SarvexTool/Bench/Core/Limits.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace Bench {

namespace {

constexpr std::size_t bitsInWord = 64;

void SetBit(std::vector<std::uint64_t>& bits, std::size_t index) {
    bits[index / bitsInWord] |= std::uint64_t{1} << (index % bitsInWord);
}

bool FitsChain(const Limit& limit, Chain chain) {
    switch (chain) {
    case Chain::A:
        return limit.isForChainA;
    case Chain::B:
        return limit.isForChainB;
    case Chain::None:
        break;
    }
    // Which chain it would be is not known: only a limit for both is surely its own.
    return limit.isForChainA && limit.isForChainB;
}

} // namespace

bool SettingPattern::Fits(const std::string* value) const {
    if (isAny)
        return true;
    if (value == nullptr)
        return false;
    if (std::find(values.begin(), values.end(), *value) != values.end())
        return true;
    const std::optional<Decimal> number = ranges.empty() ? std::nullopt : Decimal::Parse(*value);
    return number && std::any_of(ranges.begin(), ranges.end(), [&number](const Range& range) {
               return range.first <= *number && *number <= range.last;
           });
}

LimitTable::LimitTable(std::vector<Limit> limits) : m_limits(std::move(limits)) {
    m_neverFitting = MakeBits();
    for (std::size_t index = 0; index < m_limits.size(); ++index)
        SetBit(m_neverFitting, index);
    for (const Chain chain : {Chain::A, Chain::B, Chain::None}) {
        Bits& bits = m_fittingChain[static_cast<std::size_t>(chain)];
        bits = MakeBits();
        for (std::size_t index = 0; index < m_limits.size(); ++index) {
            if (FitsChain(m_limits[index], chain))
                SetBit(bits, index);
        }
    }
}

const Limit* LimitTable::Find(const Settings& settings, Chain chain) {
    FittingSettings fitting;
    for (std::size_t setting = 0; setting < SettingCount; ++setting)
        fitting[setting] = &FittingLimits(setting, settings[static_cast<Setting>(setting)]);
    const Limit* first = nullptr;
    for (std::size_t word = 0; word < m_neverFitting.size(); ++word) {
        // Once every limit has fitted something, the search ends with the first that fits.
        if (first != nullptr && m_neverFitting[word] == 0)
            continue;
        const std::uint64_t bits = FittingWord(word, fitting, chain);
        m_neverFitting[word] &= ~bits;
        if (first == nullptr && bits != 0)
            first = &m_limits[word * bitsInWord + static_cast<std::size_t>(std::countr_zero(bits))];
    }
    return first;
}

std::uint64_t LimitTable::FittingWord(std::size_t word, const FittingSettings& settings,
                                      Chain chain) const {
    std::uint64_t bits = m_fittingChain[static_cast<std::size_t>(chain)][word];
    for (const Bits* fitting : settings)
        bits &= (*fitting)[word];
    return bits;
}

std::vector<const Limit*> LimitTable::NeverFitting() const {
    std::vector<const Limit*> limits;
    for (std::size_t index = 0; index < m_limits.size(); ++index) {
        if ((m_neverFitting[index / bitsInWord] >> (index % bitsInWord) & 1) != 0)
            limits.push_back(&m_limits[index]);
    }
    return limits;
}

const LimitTable::Bits& LimitTable::FittingLimits(std::size_t setting, const std::string* value) {
    const auto [entry, isNew] = m_fittingSetting[setting].try_emplace(value);
    if (!isNew)
        return entry->second;
    entry->second = MakeBits();
    for (std::size_t index = 0; index < m_limits.size(); ++index) {
        if (m_limits[index].settings[setting].Fits(value))
            SetBit(entry->second, index);
    }
    return entry->second;
}

LimitTable::Bits LimitTable::MakeBits() const {
    return Bits((m_limits.size() + bitsInWord - 1) / bitsInWord);
}

} // namespace Bench
