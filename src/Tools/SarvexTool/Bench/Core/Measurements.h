#pragma once

#include "Tools/SarvexTool/Bench/Core/Configurations.h"
#include "Tools/SarvexTool/Bench/Core/Decimal.h"
#include "Tools/SarvexTool/Bench/Core/Outcomes.h"
#include "Tools/SarvexTool/Bench/Core/Sources.h"

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
        Uncertain,
        /// The journal of the run tells another outcome than a measured power.
        Journalled
    };

    // The small members come first: there are millions of these, and 16 bytes hold one so.
    Cause cause = Cause::NoPower;
    /// For Uncertain, with since, the refused line.
    Setting setting{};
    /// For Journalled, with text, which belongs to the pool of the run; null where there is none.
    Outcome outcome = Outcome::Measured;
    LineNumber since = 0;
    const std::string* text = nullptr;

    /// A sentence without an end mark, for example "Band is uncertain since line 12". It may hold
    /// what the daemon has said, any bytes.
    std::string ToText() const;

    /// The cause in few words that do not change: "no power", "uncertain", or the outcome's name.
    const char* CauseName() const;
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

/// A run that has not come to its last line: it ended early, or still goes on.
struct EarlyEnd {
    /// Without the header.
    std::size_t linesDone = 0;
    /// Nothing where it is not known.
    std::optional<std::size_t> linesTotal;

    /// "the run is not complete: 5 of 12 lines were run"
    std::string ToText() const;

    bool operator==(const EarlyEnd&) const = default;
};

/// The measurements of one run, in the order of its lines. The texts belong to the pool that they
/// were kept in, which outlives the run.
struct RunResult {
    std::vector<Configuration> configurations;
    std::vector<Measurement> measurements;
    /// Powers of chains that their configuration does not name. They are neither judged nor
    /// compared.
    std::size_t unexpectedPowers = 0;
    /// Nothing for a run that is complete, or of which nothing tells whether it is.
    std::optional<EarlyEnd> earlyEnd;
    /// None where nothing tells where the run was measured.
    Sources sources;

    const Settings& SettingsOf(const Measurement& measurement) const {
        return configurations[measurement.configuration].settings;
    }
    LineNumber LineOf(const Measurement& measurement) const {
        return configurations[measurement.configuration].line;
    }
    /// Null where nothing tells it.
    const RunPlace* PlaceOf(const Measurement& measurement) const {
        return sources.PlaceOf(LineOf(measurement));
    }
};

/// What a result tells of the device.
struct DeviceFacts {
    std::optional<std::string> countryCode;
    /// Why the country code is not known, without an end mark; empty where it is.
    std::string whyUnknown;
};

/// What a run's journal tells of a chain of a line. The text belongs to the pool of the run; null
/// where there is none.
struct JournalledChain {
    Outcome outcome = Outcome::Measured;
    const std::string* text = nullptr;
};

/// What a run's journal tells of a line.
struct JournalledLine {
    JournalledChain a;
    JournalledChain b;
    bool isAccepted = false;
    /// Whether all effective settings of the line were sent with it, and not only its own.
    bool isExplicit = false;
};

/// One row of a result: the settings that its line wrote, and the powers that the daemon reported.
struct Row {
    LineNumber line = 0;
    Settings own;
    std::optional<Decimal> powerA;
    std::optional<Decimal> powerB;
    /// Nothing for a run without a journal: then a line with a power is one that the daemon took.
    std::optional<JournalledLine> journalled = {};
};

/// Makes a run's measurements from its rows, taken in their order.
class RunResultBuilder {
public:
    /// Makes room for so many rows, of two measurements each.
    void Reserve(std::size_t rows);

    void Add(const Row& row);

    /// The run so far; the builder is empty afterwards.
    RunResult Take();

    /// What was added since the last call, for those who go on adding: settings are carried over.
    RunResult TakeNext();

private:
    void AddMeasurement(Chain chain, const Row& row);
    /// Both return whether there is a power that speaks for the line's acceptance.
    bool AddExpected(const Row& row, ExpectedChains chains);
    bool AddWhatIsThere(const Row& row);

    CarriedSettings m_carried;
    RunResult m_run;
};

} // namespace Bench
