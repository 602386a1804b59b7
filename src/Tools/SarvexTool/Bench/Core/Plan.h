#pragma once

#include "Tools/SarvexTool/Bench/Core/Measurements.h"

#include <cstddef>
#include <cstdint>
#include <unordered_set>
#include <utility>
#include <vector>

namespace Bench {

/// A setting that no line has set when a line is run, and the first such line.
struct UnsetSetting {
    Setting setting{};
    LineNumber line = 0;
};

/// An effective configuration that no line before its own has.
struct PlannedConfiguration {
    LineNumber line = 0;
    /// A bit for each setting that the line writes itself; it carries the others over.
    std::uint16_t ownSettings = 0;
    Settings settings;

    bool IsOwn(Setting setting) const {
        return (ownSettings >> static_cast<unsigned>(setting) & 1U) != 0;
    }
};
static_assert(SettingCount <= 16);

/// What the lines of a test file ask for.
struct Plan {
    std::size_t configurations = 0;
    /// Those of configurations whose chains are known.
    std::size_t measurements = 0;
    std::size_t configurationsOfUnknownChains = 0;
    /// One for each setting that some line is run without, in the order of the columns.
    std::vector<UnsetSetting> unset;
    /// Each effective configuration once, with the first line that has it.
    std::vector<PlannedConfiguration> distinct;
};

/// Makes a plan of the lines, taken in their order. The texts belong to one pool.
class PlanBuilder {
public:
    PlanBuilder() = default;
    PlanBuilder(const PlanBuilder&) = delete;
    PlanBuilder& operator=(const PlanBuilder&) = delete;

    /// Adds a line with the settings that it writes itself. Returns the earlier line whose
    /// effective settings are all the same; 0 when there is none.
    LineNumber Add(LineNumber line, const Settings& own);

    /// How many lines were added.
    std::size_t Count() const { return m_plan.configurations; }

    /// The plan of all lines; to be called once, after them.
    Plan Take() { return std::move(m_plan); }

private:
    struct Hash {
        const std::vector<PlannedConfiguration>* pConfigurations;
        std::size_t operator()(std::uint32_t index) const;
    };
    struct Equal {
        const std::vector<PlannedConfiguration>* pConfigurations;
        bool operator()(std::uint32_t left, std::uint32_t right) const {
            return (*pConfigurations)[left].settings == (*pConfigurations)[right].settings;
        }
    };

    void NoteUnset(LineNumber line, const Settings& effective);

    CarriedSettings m_carried;
    Plan m_plan;
    /// The places in Plan::distinct.
    std::unordered_set<std::uint32_t, Hash, Equal> m_known{0, Hash{&m_plan.distinct},
                                                           Equal{&m_plan.distinct}};
};

} // namespace Bench
