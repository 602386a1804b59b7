#include "Tools/SarvexTool/Bench/Files/KeptFiles.h"

#include "Modules/xFramework/OSAL/DurableFile.h"
#include "Modules/xFramework/OSAL/Process.h"
#include "Tools/SarvexTool/Bench/Core/Verdicts.h"
#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/Journal.h"
#include "Tools/SarvexTool/Bench/Files/LimitsFile.h"
#include "Tools/SarvexTool/Bench/Files/Locks.h"
#include "Tools/SarvexTool/Bench/Files/PendingFolder.h"
#include "Tools/SarvexTool/Bench/Files/ResultTree.h"
#include "Tools/SarvexTool/Bench/Files/RunFacts.h"
#include "Tools/SarvexTool/Bench/Files/RunFiles.h"
#include "Tools/SarvexTool/Bench/Files/Sha256.h"
#include "Tools/SarvexTool/Bench/Files/UtcTime.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

namespace Bench {

namespace {

namespace fs = std::filesystem;

constexpr const char* resultName = "result.csv";
constexpr const char* treeName = "result.xml";
constexpr const char* factsName = "run.json";
constexpr const char* journalName = "journal.jsonl";

/// What is kept of a run directory, in the byte order of the names.
constexpr std::array<const char*, 7> keptNames{
    "client.log", "exchanges.jsonl", journalName, resultName, treeName, factsName, "test-file.csv"};

bool IsFile(const fs::path& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored);
}

/// A pipe would be waited for.
std::string BytesOf(const fs::path& path) {
    const std::string name = NameOf(path);
    if (!IsFile(path))
        throw BadInput(name, fs::exists(path) ? "is no ordinary file"
                                              : "cannot be read" + HintOfWildcards(name));
    std::string bytes;
    ReadPieces(name, [&bytes](std::string_view piece) { bytes += piece; });
    return bytes;
}

std::int64_t SecondsOf(std::chrono::system_clock::time_point time) {
    return std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
}

/// Of a name from any system.
std::string LastPartOf(const std::string& name) {
    return name.substr(name.find_last_of("/\\") + 1);
}

/// The name of a folder, however it is written.
std::string OwnNameOf(const fs::path& folder) {
    fs::path whole = fs::absolute(folder).lexically_normal();
    if (!whole.has_filename())
        whole = whole.parent_path();
    const std::string name = NameOf(whole.filename());
    return name.empty() ? resultName : name;
}

/// What a run tells of itself and what is told of it must not be two things.
void Fill(std::optional<std::string>& own, const std::optional<std::string>& told,
          const std::string& name, const char* option, const char* what) {
    if (own && told && *own != *told)
        throw BadInput(name, std::string("tells another ") + what + " itself (" + *own +
                                 "); leave out " + option);
    if (!own)
        own = told;
}

std::optional<std::string> UnlessEmpty(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional(text);
}

/// The text that all of some parts share.
std::optional<std::string> SharedOf(const std::vector<RunPlace>& parts,
                                    std::optional<std::string> RunPlace::*text) {
    const bool isShared = std::all_of(parts.begin(), parts.end(), [&](const RunPlace& part) {
        return part.*text == parts.front().*text;
    });
    return isShared ? parts.front().*text : std::nullopt;
}

/// What the exit code of a run with limits tells: whether all has passed, or nothing of it.
std::optional<KeptVerdict> VerdictOf(std::optional<std::int32_t> exitCode) {
    constexpr std::int32_t passed = 0;
    constexpr std::int32_t failed = 1;
    if (exitCode == passed)
        return KeptVerdict::Pass;
    return exitCode == failed ? std::optional(KeptVerdict::Fail) : std::nullopt;
}

/// The verdict of limits that may have gone since the run.
KeptVerdict VerdictBy(const std::string& limits, const RunResult& run, TextPool& texts) {
    if (!IsFile(PathOf(limits)))
        return KeptVerdict::NotJudged;
    try {
        std::istringstream none;
        LimitTable table(ReadLimits(limits, none, texts));
        return Judge(run, table).HaveAllPassed() ? KeptVerdict::Pass : KeptVerdict::Fail;
    } catch (const BadFile&) {
        return KeptVerdict::NotJudged;
    }
}

/// The bytes of a file; null where there is no such file.
const std::string* Find(const std::vector<KeptContent>& files, std::string_view name) {
    const auto found = std::find_if(files.begin(), files.end(),
                                    [name](const KeptContent& file) { return file.name == name; });
    return found == files.end() ? nullptr : &found->bytes;
}

Sources SourcesOf(const RunFacts& facts, const std::string& name) {
    std::vector<Source> sources;
    for (const RunSource& source : facts.sources)
        sources.push_back({source.lines, source.place});
    if (!facts.isMerged && facts.place != RunPlace())
        sources.push_back({{1, std::numeric_limits<LineNumber>::max()}, facts.place});
    try {
        return Sources(std::move(sources));
    } catch (const std::invalid_argument& wrong) {
        throw BadInput(name, wrong.what());
    }
}

std::size_t CountLinesRun(const std::string& journal, const std::string& name) {
    std::istringstream stream(journal);
    JournalReader reader(stream, name);
    std::size_t lines = 0;
    for (JournalEntry entry; reader.Read(entry);)
        lines += std::size_t{entry.outcome.a.outcome != Outcome::NotRun};
    return lines;
}

/// Reads one run.
class RunReader {
public:
    RunReader(const std::string& name, const KeepOptions& options, TextPool& texts)
        : m_name(name), m_options(options), m_texts(texts) {
        const fs::path path = PathOf(name);
        std::error_code ignored;
        m_isFolder = fs::is_directory(path, ignored);
        m_folder = m_isFolder ? path : path.parent_path();
        m_table = m_isFolder ? path / resultName : path;
        m_isOfFolder = m_isFolder || path.filename() == resultName;
    }

    RunToKeep Read() {
        // Another file beside a journal is none of its run.
        const bool isSupervised =
            m_isOfFolder && (IsFile(m_folder / factsName) || IsFile(m_folder / journalName));
        if (isSupervised)
            ReadSupervised();
        else
            ReadPlain();
        TellOptions();
        Count();
        m_run.facts.hash = HashOf(m_run.files);
        return std::move(m_run);
    }

private:
    void ReadSupervised() {
        const std::string facts = NameOf(m_folder / factsName);
        m_own = ReadRunFacts(facts);
        // cppcheck-suppress unreadVariable ; held while the files are read
        const std::optional<OSAL::FileLock> lock = LockUnlessComplete();
        for (const char* const name : keptNames) {
            if (IsFile(m_folder / name))
                m_run.files.push_back({name, BytesOf(m_folder / name)});
        }
        RequireFile(journalName);
        const std::string& ownFacts = RequireFile(factsName);
        m_own = ParseRunFacts(ownFacts, facts);
        ReadFiles();
        RequireComplete();
        // A run that was gone on with meanwhile has other facts now.
        if (BytesOf(m_folder / factsName) != ownFacts)
            throw BadInput(m_name, "was changed while it was read; try again when the run is over");
        TakeOwnFacts();
    }

    /// A run whose facts do not tell that it is complete may go on.
    std::optional<OSAL::FileLock> LockUnlessComplete() const {
        const std::string lock = NameOf(m_folder / "run.lock");
        if (m_own.outcome == "complete" || !IsFile(PathOf(lock)))
            return std::nullopt;
        return TakeLock(lock, m_name, "the run",
                        {OSAL::ProcessId(), "", UtcTime(std::chrono::system_clock::now())});
    }

    /// What the files tell of the device.
    DeviceFacts ReadFiles() {
        Result result = ReadKeptResult(m_run.files, NameOf(m_table), m_texts);
        m_run.result = std::move(result.run);
        return std::move(result.device);
    }

    /// The bytes of a file that a supervised run cannot be without.
    const std::string& RequireFile(const char* name) const {
        const std::string* const bytes = Find(m_run.files, name);
        if (bytes == nullptr)
            throw BadInput(NameOf(m_folder / name), "cannot be read");
        return *bytes;
    }

    void RequireComplete() const {
        if (m_options.isPartial)
            return;
        // A merged run has sent nothing itself.
        const bool mayTransmit = m_own.startPassedOn && !m_own.stopConfirmed && !m_own.isMerged;
        if (!m_run.result.earlyEnd && !mayTransmit)
            return;
        throw BadInput(m_name,
                       (m_run.result.earlyEnd
                            ? m_run.result.earlyEnd->ToText()
                            : "the daemon has not confirmed the stop of its last transmission") +
                           (m_own.isMerged ? "; merge all of them"
                                           : "; go on with it (SarvexToolBench run --resume)") +
                           ", or keep what there is with --partial");
    }

    /// The verdict of the run's own limits: as its exit code has it, or as they have it now where
    /// that tells of something else.
    KeptVerdict OwnVerdict() const {
        const RunOptions& options = m_own.options;
        if (!options.limits || m_own.isMerged)
            return KeptVerdict::NotJudged;
        if (const std::optional<KeptVerdict> told = VerdictOf(m_own.exitCode))
            return *told;
        const bool isOwnCommandRefused =
            !options.firstCommand.empty() && !options.firstCommandAccepted;
        return isOwnCommandRefused ? KeptVerdict::Fail
                                   : VerdictBy(*options.limits, m_run.result, m_texts);
    }

    void TakeOwnFacts() {
        KeptFacts& facts = m_run.facts;
        facts.name = LastPartOf(m_own.testFile.name);
        facts.testFileSha256 = UnlessEmpty(m_own.testFile.sha256);
        facts.firmware = m_own.firmware;
        facts.note = m_own.note;
        facts.user = UnlessEmpty(m_own.user);
        facts.host = UnlessEmpty(m_own.host);
        facts.daemon = UnlessEmpty(m_own.daemon);
        facts.macType = m_own.macType;
        facts.countryCode = m_own.countryCode;
        facts.outcome = UnlessEmpty(m_own.outcome);
        facts.verdict = OwnVerdict();
        const auto started = ParseUtcTime(m_own.started);
        if (!started)
            throw BadInput(NameOf(m_folder / factsName),
                           "does not tell when the run started, as 2026-03-09T08:05:00Z");
        facts.measuredAt = SecondsOf(*started);
        if (m_options.measuredAt && *m_options.measuredAt != facts.measuredAt)
            throw BadInput(m_name, "tells itself when it was measured (" + m_own.started +
                                       "); leave out --measured");
    }

    void ReadPlain() {
        m_run.files.push_back({resultName, BytesOf(m_table)});
        if (m_isOfFolder && IsFile(m_folder / treeName))
            m_run.files.push_back({treeName, BytesOf(m_folder / treeName)});
        m_run.facts.countryCode = ReadFiles().countryCode;
        m_run.facts.name = m_isOfFolder ? OwnNameOf(m_folder.empty() ? "." : m_folder)
                                        : NameOf(m_table.filename());
        m_run.isTimeOfFile = !m_options.measuredAt;
        m_run.facts.measuredAt =
            m_options.measuredAt
                ? *m_options.measuredAt
                : SecondsOf(std::chrono::time_point_cast<std::chrono::system_clock::duration>(
                      std::chrono::file_clock::to_sys(fs::last_write_time(m_table))));
    }

    void TellOptions() {
        KeptFacts& facts = m_run.facts;
        Fill(facts.firmware, m_options.firmware, m_name, "--firmware", "firmware");
        Fill(facts.note, m_options.note, m_name, "--note", "note");
        std::vector<Source> sources = m_run.result.sources.All();
        for (Source& source : sources)
            TellPlace(source.place);
        m_run.result.sources = Sources(std::move(sources));
        TellPlace(m_elsewhere);
        for (const Configuration& configuration : m_run.result.configurations)
            m_run.parts.push_back(PartOf(configuration.line));
        facts.bench = SharedOf(facts.parts, &RunPlace::bench);
        facts.device = SharedOf(facts.parts, &RunPlace::device);
    }

    void TellPlace(RunPlace& place) const {
        Fill(place.bench, m_options.bench, m_name, "--bench", "bench");
        Fill(place.device, m_options.device, m_name, "--device", "device");
    }

    /// The place among the parts, which get one that they do not have yet.
    std::uint32_t PartOf(LineNumber line) {
        const RunPlace* const told = m_run.result.sources.PlaceOf(line);
        const RunPlace& place = told != nullptr ? *told : m_elsewhere;
        std::vector<RunPlace>& parts = m_run.facts.parts;
        const auto found = std::find(parts.begin(), parts.end(), place);
        const auto part = static_cast<std::uint32_t>(found - parts.begin());
        if (found == parts.end())
            parts.push_back(place);
        return part;
    }

    void Count() {
        const std::vector<Measurement>& all = m_run.result.measurements;
        m_run.facts.lines = m_run.result.configurations.size();
        m_run.facts.measurements = all.size();
        m_run.facts.measured = static_cast<std::uint64_t>(
            std::count_if(all.begin(), all.end(), [](const Measurement& measurement) {
                return measurement.power.has_value();
            }));
    }

    std::string m_name;
    const KeepOptions& m_options;
    TextPool& m_texts;
    bool m_isFolder = false;
    bool m_isOfFolder = false;
    fs::path m_folder;
    fs::path m_table;
    /// Of a run directory.
    RunFacts m_own;
    /// Of lines of which the run itself tells no place.
    RunPlace m_elsewhere;
    RunToKeep m_run;
};

bool IsKeptName(const std::string& name) {
    return std::find(keptNames.begin(), keptNames.end(), name) != keptNames.end();
}

} // namespace

RunToKeep ReadRunToKeep(const std::string& name, const KeepOptions& options, TextPool& texts) {
    return RunReader(name, options, texts).Read();
}

Result ReadKeptResult(const std::vector<KeptContent>& files, const std::string& table,
                      TextPool& texts) {
    const fs::path folder = PathOf(table).parent_path();
    const std::string* const rows = Find(files, resultName);
    if (rows == nullptr)
        throw BadInput(table, "cannot be read");
    Result result;
    const std::string* const tree = Find(files, treeName);
    std::istringstream xml(tree == nullptr ? "" : *tree);
    result.device =
        tree == nullptr ? DeviceFacts{std::nullopt, "there is no result.xml"} : ReadResultTree(xml);
    const std::string* const journal = Find(files, journalName);
    const std::string* const ownFacts = Find(files, factsName);
    if (journal == nullptr || ownFacts == nullptr) {
        result.run = ParseResult(*rows, table, texts);
        return result;
    }
    const RunFacts facts = ParseRunFacts(*ownFacts, NameOf(folder / factsName));
    const std::string journalPath = NameOf(folder / journalName);
    std::istringstream stream(*journal);
    JournalReader reader(stream, journalPath);
    result.run = ParseResult(*rows, table, texts, &reader);
    result.run.sources = SourcesOf(facts, NameOf(folder / factsName));
    result.place = facts.place;
    if (facts.outcome != "complete")
        result.run.earlyEnd = EarlyEnd{CountLinesRun(*journal, journalPath),
                                       static_cast<std::size_t>(facts.linesTotal)};
    return result;
}

std::string HashOf(const std::vector<KeptContent>& files) {
    Sha256 hash;
    for (const KeptContent& file : files) {
        hash.Add(file.name + "\n" + std::to_string(file.bytes.size()) + "\n");
        hash.Add(file.bytes);
    }
    return hash.Finish();
}

void WriteKeptFiles(const std::string& folder, const std::vector<KeptContent>& files) {
    PendingFolder pending(folder,
                          {OSAL::ProcessId(), folder, UtcTime(std::chrono::system_clock::now())});
    for (const KeptContent& file : files) {
        if (!IsKeptName(file.name))
            throw BadOutput(folder, "is not written: no run has a file " + file.name);
        try {
            OSAL::DurableFile(pending.Files().directory + "/" + file.name,
                              OSAL::DurableFile::Opening::New)
                .Append(file.bytes);
        } catch (const std::system_error& error) {
            throw BadOutput(folder, std::string("cannot be written: ") + error.what());
        }
    }
    pending.Commit();
}

} // namespace Bench
