#include "Tools/SarvexTool/Bench/Commands/RunCall.h"

#include "Modules/xFramework/OSAL/Console.h"
#include "Tools/SarvexTool/Bench/Commands/RunWatch.h"
#include "Tools/SarvexTool/Bench/Core/Estimate.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/LimitsFile.h"
#include "Tools/SarvexTool/Bench/Files/ResultFile.h"
#include "Tools/SarvexTool/Bench/Files/TestLines.h"
#include "Tools/SarvexTool/Bench/Files/UtcTime.h"
#include "Tools/SarvexTool/Bench/Output/JsonProgress.h"
#include "Tools/SarvexTool/Bench/Output/Phrases.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"
#include "Tools/SarvexTool/Bench/Run/SupervisedRun.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>

namespace Bench {

namespace {

std::unique_ptr<IProgress> ProgressTo(const std::string& kind, RunConsole& console) {
    if (kind == "json")
        return std::make_unique<JsonProgress>(console.Streams().out.stream);
    std::ostream& err = console.Streams().err.stream;
    if (!console.IsErrTerminal())
        return std::make_unique<LineProgress>(err);
    const auto width = [] {
        constexpr std::size_t usualWidth = 80;
        return OSAL::TerminalWidth(OSAL::StandardStream::Error).value_or(usualWidth);
    };
    return std::make_unique<TerminalProgress>(err, width,
                                              [&console] { return console.IsErrWritten(); });
}

/// One call of the subcommand, on the folder of a run.
class RunCall {
public:
    RunCall(RunDirectory& directory, const std::string& progress, RunConsole& console)
        : m_directory(directory),
          m_console(console),
          m_surroundings(console.Streams()),
          m_isJson(progress == "json"),
          m_progress(ProgressTo(progress, console)) {
        const RunOptions& options = directory.Facts().options;
        if (options.limits)
            m_limits.emplace(ReadLimits(*options.limits, m_surroundings.in, m_texts));
        m_watch.emplace(*m_progress, m_texts,
                        RunWatch::Judging{m_limits ? &*m_limits : nullptr, options.failFast},
                        directory.Facts().linesTotal);
        AddEarlierLines();
    }

    int Run() {
        RunFacts& facts = m_directory.Facts();
        facts.ended.reset();
        facts.outcome.clear();
        facts.exitCode.reset();
        m_directory.SaveFacts();
        m_watch->Begin(EstimateSeconds(1, {facts.macType == SlowMacType, 0}));
        const RunEnd end = RunSupervised(m_directory, *m_watch, m_console.Requests());
        const RunSummary summary = Conclude(end);
        m_progress->MakeRoom();
        if (m_limits && summary.isComplete)
            PrintProblems(m_surroundings.err, *facts.options.limits, NeedlessLimits(*m_limits));
        m_progress->End(summary);
        // Whoever has sent the summary elsewhere, or nowhere, is to hear of this all the same.
        if (summary.unconfirmedStop && !m_console.IsOutTerminal())
            m_surroundings.err.stream << "The transmitter may still be ON: the daemon has not "
                                         "confirmed the stop.\n"
                                      << std::flush;
        // Last of all, because a transmitter that may be on is told at its end.
        PrintSummary(m_isJson ? m_surroundings.err.stream : m_surroundings.out.stream, summary);
        return summary.exitCode;
    }

private:
    void AddEarlierLines() {
        TestLines lines(m_directory.Files().testFile);
        TestLine line;
        std::ifstream rows(PathOf(m_directory.Files().result), std::ios::binary);
        std::string row;
        if (lines.IsHeaderKnown())
            std::getline(rows, row);
        for (const JournalEntry& entry : ReadJournal(m_directory.Files().journal)) {
            if (lines.Read(line) && std::getline(rows, row))
                m_watch->AddEarlier({entry.line, entry.outcome, row}, line.own);
        }
    }

    RunSummary Conclude(const RunEnd& end) {
        RunSummary summary;
        const RunProgress& progress = m_watch->Progress();
        summary.isComplete = end.kind == RunEnd::Kind::Complete;
        summary.whyEnded = end.reason;
        summary.linesDone = progress.linesDone;
        summary.linesTotal = progress.linesTotal;
        summary.outcomes = progress.outcomes;
        summary.verdicts = progress.verdicts;
        summary.missing = m_watch->Missing();
        std::error_code ignored;
        if (std::filesystem::exists(PathOf(m_directory.Files().directory), ignored))
            summary.directory = m_directory.Files().directory;
        summary.daemon = m_directory.Facts().daemon;
        if (end.mayTransmit)
            summary.unconfirmedStop = "it " + end.stopProblem;
        summary.hasTransmitted = m_directory.Facts().startPassedOn;
        summary.limits = m_directory.Facts().options.limits;
        summary.exitCode = ExitCodeOf(end);
        SaveEnd(end, summary);
        summary.notes = AsSentences(m_directory.Facts().notes);
        return summary;
    }

    int ExitCodeOf(const RunEnd& end) {
        if (end.mayTransmit)
            return ExitCode::StopNotConfirmed;
        if (end.kind == RunEnd::Kind::Complete)
            return HasPassed() ? ExitCode::Fine : ExitCode::Found;
        return m_watch->HasFailedFast(end.reason) ? ExitCode::Found : ExitCode::EndedEarly;
    }

    /// As judge has it, of the files as they are.
    bool HasPassed() {
        const RunOptions& options = m_directory.Facts().options;
        if (!options.firstCommand.empty() && !options.firstCommandAccepted)
            return false;
        try {
            const Result result =
                ReadResult(NamesOf(m_directory.Files().directory), m_surroundings.in, m_texts);
            const auto isMeasured = [](const Measurement& measurement) {
                return measurement.power.has_value();
            };
            NoteUncertain(result.run);
            return m_limits ? Judge(result.run, *m_limits).HaveAllPassed()
                            : std::all_of(result.run.measurements.begin(),
                                          result.run.measurements.end(), isMeasured);
        } catch (const BadFile& bad) {
            m_directory.Facts().AddNote("the results cannot be judged: " +
                                        bad.Problems().front().text);
            return false;
        }
    }

    void NoteUncertain(const RunResult& run) {
        const auto count = std::count_if(
            run.measurements.begin(), run.measurements.end(), [](const Measurement& measurement) {
                return !measurement.power &&
                       measurement.reason.cause == NotMeasured::Cause::Uncertain;
            });
        if (count > 0)
            m_directory.Facts().AddNote(NoteOfUncertain(static_cast<std::size_t>(count)));
    }

    /// The results are there, whatever becomes of the facts.
    void SaveEnd(const RunEnd& end, const RunSummary& summary) {
        RunFacts& facts = m_directory.Facts();
        facts.ended = UtcTime(std::chrono::system_clock::now());
        facts.outcome = summary.isComplete ? "complete" : end.reason;
        facts.exitCode = summary.exitCode;
        facts.stopConfirmed = facts.startPassedOn && !end.mayTransmit;
        facts.linesDone = summary.linesDone;
        try {
            m_directory.SaveFacts();
        } catch (const std::exception& error) {
            facts.notes.push_back(std::string("the facts of the run could not be written: ") +
                                  error.what());
        }
    }

    RunDirectory& m_directory;
    RunConsole& m_console;
    Surroundings& m_surroundings;
    bool m_isJson;
    std::unique_ptr<IProgress> m_progress;
    TextPool m_texts;
    std::optional<LimitTable> m_limits;
    std::optional<RunWatch> m_watch;
};

} // namespace

int RunTest(RunDirectory& directory, const std::string& progress, RunConsole& console) {
    return RunCall(directory, progress, console).Run();
}

} // namespace Bench
