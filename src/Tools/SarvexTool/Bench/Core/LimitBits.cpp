#include "Tools/SarvexTool/Bench/Core/LimitBits.h"

#include <bit>
#include <utility>

namespace Bench {

namespace {

constexpr std::size_t bitsInWord = 64;

void SetBit(std::vector<std::uint64_t>& bits, std::size_t index) {
    bits[index / bitsInWord] |= std::uint64_t{1} << (index % bitsInWord);
}

} // namespace

LimitBits::LimitBits(const std::vector<Limit>& lines, std::vector<std::uint32_t> places)
    : m_lines(lines), m_places(std::move(places)) {
    m_neverFitting = MakeBits();
    m_fittingChain.fill(MakeBits());
    m_fittingAny.fill(MakeBits());
    for (std::size_t index = 0; index < m_places.size(); ++index) {
        Limit limit = m_lines[m_places[index]];
        SetBit(m_neverFitting, index);
        for (std::size_t setting = 0; setting < SettingCount; ++setting) {
            if (std::exchange(limit.settings[setting], nullptr) == nullptr)
                SetBit(m_fittingAny[setting], index);
        }
        for (const Chain chain : {Chain::A, Chain::B, Chain::None}) {
            if (limit.Fits(Settings(), chain))
                SetBit(m_fittingChain[static_cast<std::size_t>(chain)], index);
        }
    }
}

std::optional<std::uint32_t> LimitBits::Find(const Settings& settings, Chain chain,
                                             std::vector<bool>& hasFitted) {
    FittingSettings fitting;
    for (std::size_t setting = 0; setting < SettingCount; ++setting)
        fitting[setting] = &FittingLimits(setting, settings[static_cast<Setting>(setting)]);
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

const LimitBits::Bits& LimitBits::FittingLimits(std::size_t setting, const std::string* value) {
    const auto [entry, isNew] = m_fittingSetting[setting].try_emplace(value);
    Bits& bits = entry->second;
    if (isNew && value != nullptr) {
        bits = m_fittingAny[setting];
        for (std::size_t index = 0; index < m_places.size(); ++index) {
            const SettingPattern* const pattern = m_lines[m_places[index]].settings[setting];
            if (pattern != nullptr && pattern->Fits(value))
                SetBit(bits, index);
        }
        // Most values of a large table are in no limit: all of these share their bits.
        if (bits == m_fittingAny[setting])
            bits = {};
    }
    return bits.empty() ? m_fittingAny[setting] : bits;
}

LimitBits::Bits LimitBits::MakeBits() const {
    return Bits((m_places.size() + bitsInWord - 1) / bitsInWord);
}

} // namespace Bench
