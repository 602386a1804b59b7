#include "Tools/SarvexTool/Bench/Commands/Subcommands.h"

#include "Modules/xFramework/OSAL/Process.h"
#include "Tools/SarvexTool/Bench/Core/ChunkChoice.h"
#include "Tools/SarvexTool/Bench/Files/ChunkRows.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/FoundRuns.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/Manifest.h"
#include "Tools/SarvexTool/Bench/Files/MergedFacts.h"
#include "Tools/SarvexTool/Bench/Files/MergedRun.h"
#include "Tools/SarvexTool/Bench/Files/ResultFile.h"
#include "Tools/SarvexTool/Bench/Files/UtcTime.h"
#include "Tools/SarvexTool/Bench/Output/MergeSummary.h"
#include "Tools/SarvexTool/Bench/Output/Phrases.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Bench {

namespace {

namespace fs = std::filesystem;

struct MergeOptions {
    std::string input;
    std::string output;
    bool isPartial = false;
};

constexpr ProblemKind changedKind{Severity::Error, "files that are not those of the manifest"};

/// A row of a line that was not run.
constexpr const char* noPowers = ",NA,NA";

/// What the runs of a plan's chunks are.
struct Input {
    std::string manifestName;
    /// That of the manifest, with a slash at its end.
    std::string folder;
    Manifest manifest;
    std::vector<RunFolder> runs;
    std::vector<FoundRun> found;
    ChunkChoice choice;
};

std::string ManifestNameOf(const std::string& input) {
    std::error_code ignored;
    return fs::is_directory(PathOf(input), ignored) ? NameOf(PathOf(input) / ManifestName) : input;
}

std::string FolderOf(const std::string& manifestName) {
    const fs::path folder = PathOf(manifestName).parent_path();
    return folder.empty() ? "" : NameOf(folder) + "/";
}

void RequireHash(const std::string& folder, const std::string& file, const std::string& sha256,
                 ProblemList& problems) {
    std::string what = "is not what it was when the plan was split";
    try {
        if (HashOfFile(folder + file) == sha256)
            return;
    } catch (const BadInput& bad) {
        what = bad.Problems().front().text;
    }
    problems.Add(changedKind, 0, 0, file + " " + what);
}

void RequireUnchangedFiles(const Input& input, ProblemList& problems) {
    RequireHash(input.folder, PlanCopyName, input.manifest.plan.sha256, problems);
    for (const ManifestChunk& chunk : input.manifest.chunks)
        RequireHash(input.folder, chunk.file, chunk.sha256, problems);
}

Input ReadInputOf(const MergeOptions& options) {
    Input input;
    input.manifestName = ManifestNameOf(options.input);
    input.folder = FolderOf(input.manifestName);
    input.manifest = ReadManifest(input.manifestName);
    ProblemList problems;
    RequireUnchangedFiles(input, problems);
    input.runs = FindRuns(input.folder, problems);
    for (const RunFolder& run : input.runs)
        input.found.push_back(FoundRunOf(input.folder, run));
    input.choice = ChooseRuns(input.manifest.chunks, input.found, options.isPartial, problems);
    if (problems.Count(Severity::Error) != 0)
        throw BadInput(input.manifestName, problems.InOrder());
    return input;
}

/// A merged run among the runs of the chunks would be one of no chunk for the next call.
void RequireElsewhere(const std::string& output, const Input& input) {
    std::error_code ignored;
    const fs::path runs = fs::weakly_canonical(PathOf(input.folder + "runs"), ignored);
    const fs::path place = fs::weakly_canonical(fs::absolute(PathOf(output)), ignored);
    const auto [end, other] = std::mismatch(runs.begin(), runs.end(), place.begin(), place.end());
    if (end == runs.end())
        throw WrongUsage("the output " + output +
                         " is among the runs of the chunks; name another "
                         "folder");
}

/// Goes through the lines of the plan and takes their rows from the runs of the chunks.
class LineMerger {
public:
    LineMerger(const Input& input, MergedRun& merged, Surroundings& surroundings)
        : m_input(input),
          m_merged(merged),
          m_surroundings(surroundings),
          m_plan(input.folder + PlanCopyName) {}

    /// False when some row is not what it should be; all such runs are told.
    bool Run() {
        m_merged.AddHeader(m_plan.Header());
        for (std::size_t chunk = 0; chunk < m_input.manifest.chunks.size(); ++chunk)
            AddChunk(chunk);
        if (m_plan.Read(m_line))
            throw BadInput(m_input.manifestName, "tells of fewer lines than the plan has");
        return m_isRight;
    }

    std::size_t LinesDone() const { return m_linesDone; }

    std::vector<BenchShare> Shares() const {
        std::vector<BenchShare> shares;
        for (const auto& [name, share] : m_shares)
            shares.push_back(share);
        return shares;
    }

private:
    void AddChunk(std::size_t place) {
        const ManifestChunk& chunk = m_input.manifest.chunks[place];
        const std::optional<ChunkChoice::Used>& used = m_input.choice.used[place];
        try {
            if (used)
                AddRun(chunk, *used);
        } catch (const BadInput& bad) {
            PrintProblems(m_surroundings.err, bad.File(), bad.Problems());
            m_isRight = false;
        }
        while (m_line.number < chunk.lines.last) {
            ReadLine();
            JournalEntry entry;
            entry.outcome = {{Outcome::NotRun, ""}, {Outcome::NotRun, ""}, false};
            Add(noPowers, entry);
        }
    }

    void AddRun(const ManifestChunk& chunk, const ChunkChoice::Used& used) {
        const RunFolder& run = m_input.runs[used.run];
        ChunkRows rows(m_input.folder + run.name, m_input.folder + chunk.file);
        BenchShare& share = m_shares[run.facts.place.bench];
        share.name = run.facts.place.bench;
        ++share.chunks;
        for (std::size_t count = 0; count < used.lines; ++count) {
            rows.Read(m_row);
            ReadLine();
            RequireSameSettings(chunk);
            share.seconds += m_row.entry.seconds;
            Add(m_row.powers, m_row.entry);
            ++share.lines;
            ++m_linesDone;
        }
    }

    void ReadLine() {
        if (!m_plan.Read(m_line))
            throw BadInput(m_input.manifestName, "tells of more lines than the plan has");
        for (std::size_t setting = 0; setting < SettingCount; ++setting) {
            if (m_line.own.at(setting))
                m_settings.at(setting) = m_line.own.at(setting);
        }
    }

    /// A manifest that was changed may tell of a chunk where the plan has other lines.
    void RequireSameSettings(const ManifestChunk& chunk) const {
        if (m_row.own != m_settings)
            throw BadInput(m_input.manifestName,
                           chunk.file + " has other settings than line " +
                               std::to_string(m_line.number) +
                               " of the plan; split the plan anew, and run its chunks");
    }

    void Add(const std::string& powers, JournalEntry entry) {
        entry.line = m_line.number;
        entry.isExplicit = true;
        m_merged.Add(m_line.text + powers, std::move(entry));
    }

    const Input& m_input;
    MergedRun& m_merged;
    Surroundings& m_surroundings;
    TestLines m_plan;
    TestLine m_line{.number = 1, .text = {}, .own = {}};
    /// Those of the line, with what the lines before have left.
    OwnSettings m_settings;
    ChunkRow m_row;
    bool m_isRight = true;
    std::size_t m_linesDone = 0;
    std::map<std::optional<std::string>, BenchShare> m_shares;
};

/// How many measurements the rows are, and how many have a power that counts.
void CountMeasurements(const RunFiles& files, MergeSummary& summary, RunFacts& facts,
                       Surroundings& surroundings) {
    TextPool texts;
    const ResultNames names{files.result, std::nullopt, files.journal, files.facts};
    try {
        const RunResult run = ReadResult(names, surroundings.in, texts).run;
        summary.measurements = run.measurements.size();
        summary.measured = static_cast<std::size_t>(
            std::count_if(run.measurements.begin(), run.measurements.end(),
                          [](const Measurement& measurement) { return measurement.power; }));
    } catch (const BadFile& bad) {
        facts.AddNote("the result cannot be judged: " + bad.Problems().front().text);
    }
}

/// As for a run.
int ExitCodeOf(const MergeSummary& summary, const RunOptions& options) {
    const bool isMeasured = summary.measurements > 0 && summary.measured == summary.measurements;
    const bool isAccepted = options.firstCommand.empty() || options.firstCommandAccepted;
    return isMeasured && isAccepted && summary.chunksDone == summary.chunksTotal ? ExitCode::Fine
                                                                                 : ExitCode::Found;
}

MergeSummary SummaryOf(const Input& input, const LineMerger& lines, const std::string& output) {
    MergeSummary summary;
    summary.directory = output;
    summary.chunksTotal = input.manifest.chunks.size();
    summary.chunksDone = input.choice.complete;
    summary.linesTotal = input.manifest.plan.lines;
    summary.linesDone = lines.LinesDone();
    summary.benches = lines.Shares();
    summary.otherAttempts = input.choice.unused.size();
    return summary;
}

int Merge(const MergeOptions& options, Surroundings& surroundings) {
    if (options.output.empty() || options.output == StandardStreamName)
        throw WrongUsage("-o needs the name of a folder");
    const Input input = ReadInputOf(options);
    RequireElsewhere(options.output, input);
    const std::string since = UtcTime(std::chrono::system_clock::now());
    MergedRun merged(options.output, input.folder + PlanCopyName,
                     {OSAL::ProcessId(), options.output, since});
    LineMerger lines(input, merged, surroundings);
    if (!lines.Run())
        return ExitCode::Failed;

    MergeSummary summary = SummaryOf(input, lines, options.output);
    RunFacts facts = MergedFacts(input.manifest.chunks, input.runs, input.choice);
    facts.programVersion = SARVEX_BENCH_VERSION;
    facts.testFile = {input.manifest.plan.name, input.manifest.plan.sha256};
    facts.linesTotal = summary.linesTotal;
    facts.linesDone = summary.linesDone;
    merged.Finish(facts.countryCode.value_or(PowerTest::unsetCell));
    CountMeasurements(merged.Files(), summary, facts, surroundings);
    facts.exitCode = ExitCodeOf(summary, facts.options);
    merged.Commit(facts);
    summary.notes = AsSentences(facts.notes);
    PrintSummary(surroundings.out.stream, summary);
    return *facts.exitCode;
}

} // namespace

Command AddMerge(Options program) {
    const Options app =
        program.AddSubcommand("merge", "Put the runs of a plan's chunks together as one run");
    const auto options = std::make_shared<MergeOptions>();
    app.Add("DIR", options->input,
            "The folder that split has made, with the runs in its folder runs; or its "
            "manifest")
        .Required()
        .TypeName("");
    app.Add("-o,--output", options->output, "Folder for the run, one that is not there yet")
        .Required()
        .TypeName("RUN");
    app.AddFlag("--partial", options->isPartial,
                "Take what is there; the other lines are marked as not run");
    app.Footer("Exit code: 0 all measured, 1 something was not, 2 wrong usage, a chunk whose "
               "complete run is missing or not the only one, a run of something else, or a file "
               "that is wrong or cannot be read or written.");
    return {app, [options](Surroundings& surroundings) { return Merge(*options, surroundings); },
            true};
}

} // namespace Bench
