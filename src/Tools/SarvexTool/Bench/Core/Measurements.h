#pragma once

#include "Tools/SarvexTool/Bench/Core/Configurations.h"
#include "Tools/SarvexTool/Bench/Core/Decimal.h"

#include <optional>
#include <string>
#include <vector>

namespace Bench {

/// A chain of a measurement. None stands for the one measurement of a configuration whose chains
/// are not known and that gave no power; it is shown as "?".
enum class Chain : std::uint8_t { A, B, None };

/// "A", "B" or "?".
const char* NameOf(Chain chain);

/// Why a measurement has no power that could be judged.
struct NotMeasured {
    enum class Cause : std::uint8_t {
        /// The daemon reported no power of the chain.
        NoPower,
        /// A setting was carried over from a line that the daemon refused.
        Uncertain
    };

    Cause cause = Cause::NoPower;
    /// For Uncertain: the setting and the refused line.
    Setting setting{};
    LineNumber since = 0;

    /// A sentence without an end mark, for example "Band is uncertain since line 12".
    std::string ToText() const;
};

/// One line of a run: its number and its effective settings.
struct Configuration {
    LineNumber line = 0;
    Settings settings;
};

/// A chain of a configuration and its power in dBm, or why there is none.
struct Measurement {
    /// The place in RunResult::configurations.
    std::uint32_t configuration = 0;
    Chain chain = Chain::A;
    /// Nothing for a measurement that is not measured.
    std::optional<Decimal> power;
    /// Says why, where there is no power.
    NotMeasured reason;
};

/// The measurements of one run, in the order of its lines. The texts belong to the pool that they
/// were kept in, which outlives the run.
struct RunResult {
    std::vector<Configuration> configurations;
    std::vector<Measurement> measurements;
    /// Powers of chains that their configuration does not name. They are neither judged nor
    /// compared.
    std::size_t unexpectedPowers = 0;

    const Settings& SettingsOf(const Measurement& measurement) const {
        return configurations[measurement.configuration].settings;
    }
    LineNumber LineOf(const Measurement& measurement) const {
        return configurations[measurement.configuration].line;
    }
};

/// One row of a result: the settings that its line wrote, and the powers that the daemon reported.
struct Row {
    LineNumber line = 0;
    Settings own;
    std::optional<Decimal> powerA;
    std::optional<Decimal> powerB;
};

/// Makes a run's measurements from its rows, taken in their order.
class RunResultBuilder {
public:
    /// Makes room for so many rows, of two measurements each.
    void Reserve(std::size_t rows);

    void Add(const Row& row);

    /// The run so far; the builder is empty afterwards.
    RunResult Take();

private:
    void AddMeasurement(Chain chain, const std::optional<Decimal>& power);
    void AddExpected(const Row& row, ExpectedChains chains);
    void AddWhatIsThere(const Row& row);

    CarriedSettings m_carried;
    RunResult m_run;
};

} // namespace Bench
