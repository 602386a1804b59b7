#include "Tools/SarvexTool/Bench/Commands/HistoryCommands.h"
#include "Tools/SarvexTool/Bench/Commands/HistoryOptions.h"
#include "Tools/SarvexTool/Bench/Commands/OptionValues.h"
#include "Tools/SarvexTool/Bench/Core/Verdicts.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/KeptFiles.h"
#include "Tools/SarvexTool/Bench/Files/LimitsFile.h"
#include "Tools/SarvexTool/Bench/Output/HistoryText.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"
#include "Tools/SarvexTool/Bench/Output/ShownTime.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace Bench {

namespace {

struct AddArguments {
    std::vector<std::string> runs;
    std::optional<std::string> store;
    std::optional<std::string> bench;
    std::optional<std::string> device;
    std::optional<std::string> firmware;
    std::optional<std::string> note;
    std::optional<std::string> measured;
    std::optional<std::string> limits;
    bool isPartial = false;
};

/// Throws WrongUsage for a moment that is yet to come; clocks may differ by a day.
std::int64_t MeasuredAt(const std::string& text) {
    constexpr std::int64_t secondsOfDay = 86'400;
    const std::int64_t moment = MomentOf("--measured", text);
    if (moment > Now() + secondsOfDay)
        throw WrongUsage("--measured " + text + " is in the future");
    return moment;
}

KeepOptions OptionsFrom(const AddArguments& arguments) {
    KeepOptions options;
    options.bench = TextFrom("--bench", arguments.bench, "a name");
    options.device = TextFrom("--device", arguments.device, "a name");
    options.firmware = TextFrom("--firmware", arguments.firmware);
    options.note = TextFrom("--note", arguments.note);
    if (arguments.measured)
        options.measuredAt = MeasuredAt(*arguments.measured);
    options.isPartial = arguments.isPartial;
    return options;
}

/// Whether a RUN is rather the name of a store on a server, rightly written or not.
bool IsServer(const std::string& run) {
    std::error_code ignored;
    const std::string name = run.substr(0, run.find_last_not_of("/\\") + 1);
    if (name.empty() || std::filesystem::exists(PathOf(run), ignored))
        return false;
    try {
        return StoreName::Parse(name).IsServer();
    } catch (const std::invalid_argument&) {
        return true;
    }
}

/// Where --store was forgotten, no run is kept elsewhere before that is told. The URL is not shown,
/// as it may have a password.
void RequireNoServer(const std::vector<std::string>& runs) {
    if (std::any_of(runs.begin(), runs.end(), IsServer))
        throw WrongUsage("a RUN is the URL of a server; write --store before it");
}

/// Adds one run after the other; what is wrong with one keeps no other from being added.
class RunAdder {
public:
    RunAdder(const AddArguments& arguments, Surroundings& surroundings)
        : m_arguments(arguments), m_options(OptionsFrom(arguments)), m_surroundings(surroundings) {
        StoreNameOf(arguments.store);
        RequireNoServer(arguments.runs);
        if (arguments.limits)
            m_limits.emplace(ReadLimits(*arguments.limits, surroundings.in, m_texts));
    }

    int AddAll() {
        int exitCode = ExitCode::Fine;
        for (const std::string& name : m_arguments.runs)
            exitCode = std::max<int>(exitCode, Add(name));
        return exitCode;
    }

private:
    ExitCode Add(const std::string& name) {
        std::optional<RunToKeep> run;
        try {
            run.emplace(ReadRunToKeep(name, m_options, m_texts));
        } catch (const BadFile& bad) {
            PrintProblems(m_surroundings.err, bad.File(), bad.Problems());
            return ExitCode::Failed;
        }
        if (m_limits)
            run->facts.verdict = Judge(run->result, *m_limits).HaveAllPassed() ? KeptVerdict::Pass
                                                                               : KeptVerdict::Fail;
        if (!m_store)
            m_store.emplace(OpenToWrite(m_arguments.store));
        try {
            const bool isNew = m_store->Add(*run, Now());
            const KeptFacts kept = isNew ? run->facts : m_store->Find(run->facts.hash);
            RequireSame(kept, run->facts);
            PrintAdded(m_surroundings.out.stream, kept, isNew);
            if (run->isTimeOfFile)
                PrintTimeOfFile(run->facts.measuredAt, kept.measuredAt, isNew);
            m_surroundings.out.stream.flush();
            return ExitCode::Fine;
        } catch (const KeptOtherwise& otherwise) {
            m_surroundings.err.stream << MakeHarmless(name + ": " + otherwise.what()) << "\n";
            return ExitCode::Failed;
        }
    }

    /// Of a result that does not tell when it was measured.
    void PrintTimeOfFile(std::int64_t written, std::int64_t kept, bool isNew) const {
        std::ostream& stream = m_surroundings.out.stream;
        if (isNew)
            stream << "  Measured when the file was written, " << ShownMinute(written)
                   << " UTC, because nothing else tells; --measured says another time.\n";
        else if (written != kept)
            stream << "  Its file was written at another time, " << IsoTime(written)
                   << ": results with the same bytes are one run.\n";
    }

    /// What the options say of a run is not dropped in silence.
    void RequireSame(const KeptFacts& kept, const KeptFacts& told) const {
        constexpr const char* remedy =
            "; to keep it otherwise, remove it (history remove) and add it again";
        if (m_options.measuredAt && kept.measuredAt != told.measuredAt)
            throw KeptOtherwise("it is kept already, as measured " + IsoTime(kept.measuredAt) +
                                remedy);
        if (m_limits && kept.verdict != told.verdict)
            throw KeptOtherwise(std::string("it is kept already, with the verdict ") +
                                NameOf(kept.verdict) + remedy);
    }

    const AddArguments& m_arguments;
    KeepOptions m_options;
    Surroundings& m_surroundings;
    TextPool m_texts;
    std::optional<LimitTable> m_limits;
    /// Opened for the first run that can be kept: for nothing, none is made.
    std::optional<Store> m_store;
};

} // namespace

Command AddHistoryAdd(Options history) {
    const Options app = history.AddSubcommand("add", "Keep runs");
    const auto arguments = std::make_shared<AddArguments>();
    app.Add("RUN", arguments->runs,
            "Run directories, or results of the client: result.csv or the folder that "
            "holds it")
        .Required()
        .TypeName("");
    AddStoreOption(app, arguments->store);
    app.Add("--bench", arguments->bench, "The bench, where the run does not tell it")
        .TypeName("NAME");
    app.Add("--device", arguments->device, "The device, where the run does not tell it")
        .TypeName("NAME");
    app.Add("--firmware", arguments->firmware,
            "The device's firmware, where the run does not tell it")
        .TypeName("TEXT");
    app.Add("--note", arguments->note, "What else there is to say of the runs").TypeName("TEXT");
    app.Add("--measured", arguments->measured,
            "When a result was measured that does not tell it, in UTC, as "
            "2026-03-09T08:05:00Z; when the file was written without it")
        .TypeName("TIME");
    app.Add("--limits", arguments->limits, "Judge the runs by these limits").TypeName("FILE");
    app.AddFlag("--partial", arguments->isPartial,
                "Keep runs that ended early, or whose last stop was not confirmed, too");
    app.Footer("Exit code: 0 all are kept, 2 wrong usage, a run that goes on, ended early or "
               "cannot be read or is kept with something else said of it, or a store that cannot "
               "be written.");
    return {app, [arguments](Surroundings& surroundings) {
                return RunAdder(*arguments, surroundings).AddAll();
            }};
}

} // namespace Bench
