#include "Tools/SarvexTool/Bench/Core/Plan.h"

namespace Bench {

namespace {

std::uint16_t BitsOf(const Settings& own) {
    unsigned bits = 0;
    for (std::size_t index = 0; index < SettingCount; ++index)
        bits |= static_cast<unsigned>(own[static_cast<Setting>(index)] != nullptr) << index;
    return static_cast<std::uint16_t>(bits);
}

} // namespace

std::size_t PlanBuilder::Hash::operator()(std::uint32_t index) const {
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15;
    constexpr int shift = 29;
    std::uint64_t hash = 0;
    for (const std::string* const text : (*pConfigurations)[index].settings) {
        hash = (hash ^ std::hash<const std::string*>()(text)) * factor;
        hash ^= hash >> shift;
    }
    return static_cast<std::size_t>(hash);
}

LineNumber PlanBuilder::Add(LineNumber line, const Settings& own) {
    m_carried.Write(line, own);
    const Settings& effective = m_carried.Effective();
    ++m_plan.configurations;
    const ExpectedChains chains = ChainsOf(effective[Setting::Chains]);
    m_plan.measurements += static_cast<std::size_t>(chains.Count());
    m_plan.configurationsOfUnknownChains += std::size_t{!chains.AreKnown()};
    NoteUnset(line, effective);

    m_plan.distinct.push_back({line, BitsOf(own), effective});
    const auto index = static_cast<std::uint32_t>(m_plan.distinct.size() - 1);
    const auto [known, isNew] = m_known.insert(index);
    if (isNew)
        return 0;
    m_plan.distinct.pop_back();
    return m_plan.distinct[*known].line;
}

void PlanBuilder::NoteUnset(LineNumber line, const Settings& effective) {
    // What is set once stays set, so that only the first line can show anything new.
    if (m_plan.configurations > 1)
        return;
    for (std::size_t index = 0; index < SettingCount; ++index) {
        const auto setting = static_cast<Setting>(index);
        if (effective[setting] == nullptr)
            m_plan.unset.push_back({setting, line});
    }
}

} // namespace Bench
