#include "Tools/SarvexTool/Bench/Core/Limits.h"

#include "Tools/SarvexTool/Bench/Core/LimitBits.h"
#include "Tools/SarvexTool/Bench/Core/ProblemList.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace Bench {

namespace {

/// Stands for no limit, after all others.
constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

/// A limit whose lists hold more combinations of values is not entered under each.
constexpr std::size_t mostCombinations = 64;

/// So many limits are faster looked through all together than one by one.
constexpr std::size_t fewestInCrowd = 64;

/// A list of a limit that is longer than this is looked up as well.
constexpr std::size_t mostInShort = 100;

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

/// The settings for which a limit asks for one of a few plain values.
std::vector<Setting> PlainSettings(const Limit& limit) {
    std::vector<Setting> plain;
    std::size_t combinations = 1;
    for (std::size_t index = 0; index < SettingCount; ++index) {
        const SettingPattern* const pattern = limit.settings[index];
        if (pattern == nullptr || !pattern->ranges.empty() ||
            pattern->values.size() > mostCombinations / combinations)
            continue;
        combinations *= pattern->values.size();
        plain.push_back(static_cast<Setting>(index));
    }
    return plain;
}

/// The hashes of all combinations of the values that a limit asks for.
std::vector<std::uint64_t> Hashes(const Limit& limit, const std::vector<Setting>& settings) {
    std::vector<std::uint64_t> hashes{0};
    for (const Setting setting : settings) {
        std::vector<std::uint64_t> longer;
        for (const std::string* value : limit.settings[static_cast<std::size_t>(setting)]->values) {
            for (const std::uint64_t hash : hashes)
                longer.push_back(HashWith(hash, value));
        }
        hashes = std::move(longer);
    }
    return hashes;
}

bool HasLongPattern(const Limit& limit) {
    return std::any_of(limit.settings.begin(), limit.settings.end(), [](const auto* pattern) {
        return pattern != nullptr && pattern->values.size() + pattern->ranges.size() > mostInShort;
    });
}

} // namespace

bool SettingPattern::Fits(const std::string* value) const {
    if (value == nullptr)
        return false;
    if (std::find(values.begin(), values.end(), value) != values.end())
        return true;
    const std::optional<Decimal> number = ranges.empty() ? std::nullopt : Decimal::Parse(*value);
    return number && std::any_of(ranges.begin(), ranges.end(), [&number](const Range& range) {
               return range.first <= *number && *number <= range.last;
           });
}

bool Limit::Fits(const Settings& values, Chain chain) const {
    if (!FitsChain(*this, chain))
        return false;
    for (std::size_t index = 0; index < SettingCount; ++index) {
        const SettingPattern* const pattern = settings[index];
        if (pattern != nullptr && !pattern->Fits(values[static_cast<Setting>(index)]))
            return false;
    }
    return true;
}

LimitTable::LimitTable(Limits limits)
    : m_limits(std::move(limits)), m_hasFitted(m_limits.lines.size()) {
    for (std::size_t index = 0; index < m_limits.lines.size(); ++index)
        Enter(static_cast<std::uint32_t>(index));
    for (Group& group : m_groups) {
        std::sort(group.entries.begin(), group.entries.end());
        FindCrowds(group);
    }
}

LimitTable::~LimitTable() = default;

void LimitTable::Enter(std::uint32_t limit) {
    const std::vector<Setting> settings = PlainSettings(m_limits.lines[limit]);
    Group& group = GroupOf(settings);
    for (const std::uint64_t hash : Hashes(m_limits.lines[limit], settings))
        group.entries.push_back({hash, limit});
}

LimitTable::Group& LimitTable::GroupOf(const std::vector<Setting>& settings) {
    const auto found =
        std::find_if(m_groups.begin(), m_groups.end(),
                     [&settings](const Group& group) { return group.settings == settings; });
    return found != m_groups.end() ? *found : m_groups.emplace_back(Group{settings, {}, {}});
}

void LimitTable::FindCrowds(Group& group) {
    for (std::size_t begin = 0, end = 0; begin < group.entries.size(); begin = end) {
        std::vector<std::uint32_t> limits;
        for (; end < group.entries.size() && group.entries[end].hash == group.entries[begin].hash;
             ++end)
            limits.push_back(group.entries[end].limit);
        const bool isLong = std::any_of(limits.begin(), limits.end(), [this](std::uint32_t limit) {
            return HasLongPattern(m_limits.lines[limit]);
        });
        if (limits.size() >= fewestInCrowd || isLong)
            group.crowds.emplace_back(begin, std::make_unique<LimitBits>(m_limits.lines, limits));
    }
}

const Limit* LimitTable::Find(const Settings& settings, Chain chain) {
    std::uint32_t first = none;
    for (Group& group : m_groups)
        first = FindInGroup(group, settings, chain, first);
    return first == none ? nullptr : &m_limits.lines[first];
}

std::uint32_t LimitTable::FindInGroup(Group& group, const Settings& settings, Chain chain,
                                      std::uint32_t first) {
    std::uint64_t hash = 0;
    for (const Setting setting : group.settings)
        hash = HashWith(hash, settings[setting]);
    const auto begin = std::lower_bound(group.entries.begin(), group.entries.end(), Entry{hash, 0});
    const auto place = static_cast<std::size_t>(begin - group.entries.begin());
    const auto crowd = std::lower_bound(
        group.crowds.begin(), group.crowds.end(), place,
        [](const auto& entry, std::size_t wanted) { return entry.first < wanted; });
    if (crowd != group.crowds.end() && crowd->first == place)
        return std::min(first, crowd->second->Find(settings, chain, m_hasFitted).value_or(none));
    const auto end = std::upper_bound(begin, group.entries.end(), Entry{hash, none});
    return FindAmong(place, place + static_cast<std::size_t>(end - begin), group, settings, chain,
                     first);
}

std::uint32_t LimitTable::FindAmong(std::size_t begin, std::size_t end, const Group& group,
                                    const Settings& settings, Chain chain, std::uint32_t first) {
    for (std::size_t place = begin; place < end; ++place) {
        const std::uint32_t index = group.entries[place].limit;
        // Nothing is new when a limit fits that is not the first one and has fitted before.
        if (index > first && m_hasFitted[index])
            continue;
        if (!m_limits.lines[index].Fits(settings, chain))
            continue;
        m_hasFitted[index] = true;
        first = std::min(first, index);
    }
    return first;
}

std::vector<const Limit*> LimitTable::NeverFitting() const {
    std::vector<const Limit*> limits;
    for (std::size_t index = 0; index < m_limits.lines.size(); ++index) {
        if (!m_hasFitted[index])
            limits.push_back(&m_limits.lines[index]);
    }
    return limits;
}

std::vector<Problem> NeedlessLimits(const LimitTable& table) {
    static constexpr ProblemKind needless{Severity::Warning, "lines that fit no measurement"};
    ProblemList problems;
    for (const Limit* const limit : table.NeverFitting())
        problems.Add(needless, limit->line, 0,
                     "the line fits no measurement; look for a misspelt value, or take it away");
    return problems.InOrder();
}

} // namespace Bench
