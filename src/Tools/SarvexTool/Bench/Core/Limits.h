#pragma once

#include "Tools/SarvexTool/Bench/Core/Measurements.h"
#include "Tools/SarvexTool/Bench/Core/Problems.h"

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Bench {

/// Which values of one setting a limit is for.
struct SettingPattern {
    /// Both ends belong to the range.
    struct Range {
        Decimal first;
        Decimal last;
    };

    /// Exact texts, kept by the pool that keeps the settings.
    std::vector<const std::string*> values;
    /// Compared as numbers; a value that is no decimal is in none.
    std::vector<Range> ranges;

    /// Whether the pattern fits a value of the same pool; the unknown one, null, fits none.
    bool Fits(const std::string* value) const;
};

/// One line of a table of limits.
struct Limit {
    LineNumber line = 0;
    /// Null fits every value, and the unknown one.
    std::array<const SettingPattern*, SettingCount> settings{};
    bool isForChainA = true;
    bool isForChainB = true;
    /// In dBm; the bounds belong to what passes. Nothing where there is no bound.
    std::optional<Decimal> minimum;
    std::optional<Decimal> maximum;

    bool Fits(const Settings& values, Chain chain) const;
};

/// The lines of a table of limits, in their order, and the patterns that they point to: lines share
/// those that are alike.
struct Limits {
    std::vector<Limit> lines;
    std::deque<SettingPattern> patterns;
};

class LimitBits;

/// Finds the first limit of a table that fits a measurement. What limits ask for by plain values is
/// looked up at once, however many limits there are.
class LimitTable {
public:
    explicit LimitTable(Limits limits);
    ~LimitTable();
    LimitTable(const LimitTable&) = delete;
    LimitTable& operator=(const LimitTable&) = delete;

    const std::vector<Limit>& Lines() const { return m_limits.lines; }

    /// The first that fits; null when none does.
    const Limit* Find(const Settings& settings, Chain chain);

    /// The limits that fitted nothing that was looked for until now, first or not.
    std::vector<const Limit*> NeverFitting() const;

private:
    /// A limit under the values that it asks for.
    struct Entry {
        std::uint64_t hash;
        std::uint32_t limit;
        // The check takes the zero of the comparison for a pointer.
        auto operator<=>(const Entry&) const = default; // NOLINT(modernize-use-nullptr)
    };

    /// The limits that ask for plain values of the same settings, sorted.
    struct Group {
        std::vector<Setting> settings;
        std::vector<Entry> entries;
        /// Where many limits, or one with many values, would take long to look through; by the
        /// place of the first.
        std::vector<std::pair<std::size_t, std::unique_ptr<LimitBits>>> crowds;
    };

    void Enter(std::uint32_t limit);
    Group& GroupOf(const std::vector<Setting>& settings);
    void FindCrowds(Group& group);
    std::uint32_t FindInGroup(Group& group, const Settings& settings, Chain chain,
                              std::uint32_t first);
    std::uint32_t FindAmong(std::size_t begin, std::size_t end, const Group& group,
                            const Settings& settings, Chain chain, std::uint32_t first);

    Limits m_limits;
    std::vector<Group> m_groups;
    std::vector<bool> m_hasFitted;
};

/// A warning for each limit that has fitted nothing until now: one that is for nothing that was
/// measured is most likely misspelt.
std::vector<Problem> NeedlessLimits(const LimitTable& table);

} // namespace Bench
