#include "Tools/SarvexTool/Bench/History/Store.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/RunFacts.h"
#include "Tools/SarvexTool/Bench/History/CheckedRun.h"
#include "Tools/SarvexTool/Bench/History/Compression.h"
#include "Tools/SarvexTool/Bench/History/Rows.h"
#include "Tools/SarvexTool/Bench/History/RunQuery.h"
#include "Tools/SarvexTool/Bench/History/RunWriter.h"

#include <algorithm>
#include <utility>

namespace Bench {

namespace {

/// Nothing where no run has the hash.
std::optional<std::int64_t> NumberOf(Database& database, const std::string& hash) {
    std::optional<std::int64_t> number;
    const std::vector<Value> values{hash};
    database.Query("SELECT id FROM runs WHERE hash = $1", values,
                   [&number](const ResultRow& row) { number = row.Integer(0); });
    return number;
}

std::int64_t RequireNumber(Database& database, const std::string& hash) {
    const std::optional<std::int64_t> number = NumberOf(database, hash);
    if (!number)
        throw NotKept("the run " + ShortHash(hash) + " is not kept any more");
    return *number;
}

bool IsDigit(char character) {
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f');
}

/// Hexadecimal digits in small letters; nothing for what cannot be the beginning of a hash.
std::optional<std::string> DigitsOf(std::string text) {
    constexpr std::size_t all = 64;
    constexpr char capital = 'a' - 'A';
    for (char& character : text) {
        if (character >= 'A' && character <= 'F')
            character = static_cast<char>(character + capital);
    }
    const bool areDigits = std::all_of(text.begin(), text.end(), IsDigit);
    return areDigits && text.size() >= Store::FewestDigits && text.size() <= all
               ? std::optional(std::move(text))
               : std::nullopt;
}

constexpr const char* remedy =
    "; to keep it otherwise, remove it (history remove) and add it again";

/// A call that tells less of a run that is kept already does no harm.
void RequireSame(const char* what, const std::optional<std::string>& kept,
                 const std::optional<std::string>& told) {
    if (!told || kept == told)
        return;
    const std::string name = what;
    throw KeptOtherwise("it is kept already, with " +
                        (kept ? "the " + name + " " + *kept : "no " + name) + remedy);
}

bool IsAmong(const std::vector<RunPlace>& kept, const RunPlace& told) {
    return std::any_of(kept.begin(), kept.end(), [&told](const RunPlace& part) {
        return (!told.bench || told.bench == part.bench) &&
               (!told.device || told.device == part.device);
    });
}

void RequireSameFacts(const KeptFacts& kept, const KeptFacts& told) {
    RequireSame("bench", kept.bench, told.bench);
    RequireSame("device", kept.device, told.device);
    RequireSame("firmware", kept.firmware, told.firmware);
    RequireSame("note", kept.note, told.note);
    for (const RunPlace& part : told.parts) {
        if (!IsAmong(kept.parts, part))
            throw KeptOtherwise(
                std::string("it is kept already, with other benches or devices of its parts") +
                remedy);
    }
}

/// When a run directory tells that its run was started, to the millisecond.
std::optional<std::string> StartOf(const std::vector<KeptContent>& files) {
    for (const KeptContent& file : files) {
        if (file.name == "run.json")
            return ParseRunFacts(file.bytes, file.name).started;
    }
    return std::nullopt;
}

/// A run directory grows while its run goes on: the powers of each of its states would count anew.
void RequireNoOtherState(Database& database, const RunToKeep& run) {
    const KeptFacts& facts = run.facts;
    if (!facts.testFileSha256 || !facts.host || !facts.daemon)
        return;
    const std::vector<Value> values{facts.measuredAt, ValueOf(*facts.testFileSha256),
                                    ValueOf(*facts.host), ValueOf(*facts.daemon)};
    std::vector<std::pair<std::int64_t, std::string>> others;
    database.Query("SELECT id, hash FROM runs WHERE measured_at = $1 AND test_file_sha256 = $2 "
                   "AND host = $3 AND daemon = $4",
                   values, [&others](const ResultRow& row) {
                       others.emplace_back(row.Integer(0), TextOf(row, 1));
                   });
    for (const auto& [number, hash] : others) {
        if (StartOf(QueryFiles(database, number)) == StartOf(run.files))
            throw KeptOtherwise("another state of this run is kept already; to keep this one, "
                                "remove that one first (history remove " +
                                ShortHash(hash) + ")");
    }
}

void RequireKeepable(const std::vector<KeptContent>& files) {
    for (const KeptContent& file : files) {
        if (file.bytes.size() > MostBytesKept)
            throw KeptOtherwise("it cannot be kept, because its " + file.name + " has " +
                                std::to_string(file.bytes.size()) + " bytes, and no more than " +
                                std::to_string(MostBytesKept) + " are kept of a file");
    }
}

std::vector<std::string> BaselinesOf(Database& database, std::int64_t number) {
    std::vector<std::string> names;
    const std::vector<Value> values{number};
    database.Query("SELECT name FROM baselines WHERE run = $1", values,
                   [&names](const ResultRow& row) { names.push_back(TextOf(row, 0)); });
    std::sort(names.begin(), names.end());
    return names;
}

std::string Joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

void RequireNone(const std::vector<std::string>& baselines, const std::string& hash) {
    if (!baselines.empty())
        throw KeptOtherwise(
            "the run " + ShortHash(hash) + " is the baseline " + Joined(baselines) +
            "; take the name from it (history baseline remove), or remove both with "
            "--force");
}

std::vector<KeptFacts> FactsOnly(std::vector<NumberedRun> runs) {
    std::vector<KeptFacts> all;
    all.reserve(runs.size());
    for (NumberedRun& run : runs)
        all.push_back(std::move(run.facts));
    return all;
}

} // namespace

Store::Store(std::unique_ptr<Database> database) : m_database(std::move(database)) {}

bool Store::Add(const RunToKeep& run, std::int64_t now) {
    RequireKeepable(run.files);
    Transaction transaction(*m_database, OpenFor::Writing);
    if (const auto number = NumberOf(*m_database, run.facts.hash)) {
        const KeptFacts kept = QueryRuns(*m_database, RunWith(*number)).front().facts;
        RequireSameFacts(kept, run.facts);
        return false;
    }
    RequireNoOtherState(*m_database, run);
    std::int64_t last = 0;
    m_database->Query("SELECT MAX(id) FROM runs", {},
                      [&last](const ResultRow& row) { last = row.IsNull(0) ? 0 : row.Integer(0); });
    InsertRun(*m_database, last + 1, run, now);
    transaction.Commit();
    return true;
}

void Store::RequireWritable() {
    Transaction transaction(*m_database, OpenFor::Writing);
    // Rights are asked for whether there is a row or not.
    for (const char* table : {"runs", "parts", "configurations", "result_lines", "files"}) {
        std::string statement = "INSERT INTO ";
        statement.append(table).append(" SELECT * FROM ").append(table).append(" WHERE 1 = 0");
        m_database->Run(statement);
    }
    transaction.Commit();
}

std::vector<KeptFacts> Store::List(const RunFilter& filter) {
    Transaction transaction(*m_database, OpenFor::Reading);
    std::vector<KeptFacts> runs = FactsOnly(QueryRuns(*m_database, RunsOf(filter)));
    transaction.Commit();
    return runs;
}

KeptFacts Store::Find(const std::string& run) {
    Transaction transaction(*m_database, OpenFor::Reading);
    std::vector<NumberedRun> found = QueryRuns(*m_database, BaselineNamed(run));
    const std::optional<std::string> digits = DigitsOf(run);
    if (found.empty() && digits)
        found = QueryRuns(*m_database, RunsBeginningWith(*digits));
    transaction.Commit();
    if (found.size() == 1)
        return std::move(found.front().facts);
    if (found.size() > 1)
        throw NotKept("the hashes of " + std::to_string(found.size()) + " runs begin with " + run +
                      "; give more digits");
    throw NotKept(digits ? "no run is kept whose hash begins with " + run
                         : "there is no baseline " + run +
                               ", and it is no run's hash, of which at least " +
                               std::to_string(FewestDigits) + " digits are needed");
}

std::vector<KeptFile> Store::ListFiles(const std::string& hash) {
    Transaction transaction(*m_database, OpenFor::Reading);
    std::vector<KeptFile> files = QueryFileNames(*m_database, RequireNumber(*m_database, hash));
    transaction.Commit();
    return files;
}

std::vector<KeptContent> Store::FilesOf(const std::string& hash) {
    Transaction transaction(*m_database, OpenFor::Reading);
    std::vector<KeptContent> files = QueryFiles(*m_database, RequireNumber(*m_database, hash));
    transaction.Commit();
    if (HashOf(files) != hash)
        throw ChangedFile(m_database->Shown(), "the files of the run " + ShortHash(hash) +
                                                   " are not those that were kept");
    return files;
}

void Store::RequireNoBaseline(const std::string& hash) {
    Transaction transaction(*m_database, OpenFor::Reading);
    RequireNone(BaselinesOf(*m_database, RequireNumber(*m_database, hash)), hash);
    transaction.Commit();
}

void Store::Remove(const std::string& hash, bool withBaselines) {
    Transaction transaction(*m_database, OpenFor::Writing);
    const std::vector<Value> number{RequireNumber(*m_database, hash)};
    if (!withBaselines)
        RequireNone(BaselinesOf(*m_database, std::get<std::int64_t>(number.front())), hash);
    m_database->Run("DELETE FROM baselines WHERE run = $1", number);
    m_database->Run("DELETE FROM runs WHERE id = $1", number);
    transaction.Commit();
}

void Store::SetBaseline(const std::string& name, const std::string& hash) {
    if (name.find_first_not_of(" \t\r\n") == std::string::npos)
        throw KeptOtherwise("the name of a baseline must not be blank");
    if (DigitsOf(name))
        throw KeptOtherwise("a baseline needs a name that is not " + std::to_string(FewestDigits) +
                            " or more hexadecimal digits, for those are the hash of a run");
    // A report takes a run's file or a baseline by the same option.
    if (name == StandardStreamName || name.find_first_of("/\\") != std::string::npos ||
        name.ends_with(".csv"))
        throw KeptOtherwise("a baseline needs a name that is not -, has no / and no \\, and does "
                            "not end with .csv, for those are names of files");
    // It is kept in an index, whose rows are short on a server.
    constexpr std::size_t mostBytes = 200;
    if (name.size() > mostBytes)
        throw KeptOtherwise("the name of a baseline has at most " + std::to_string(mostBytes) +
                            " bytes");
    Transaction transaction(*m_database, OpenFor::Writing);
    const std::vector<Value> values{ValueOf(name), RequireNumber(*m_database, hash)};
    m_database->Run("DELETE FROM baselines WHERE name = $1", std::span(values).first(1));
    m_database->Run("INSERT INTO baselines(name, run) VALUES ($1, $2)", values);
    transaction.Commit();
}

void Store::RemoveBaseline(const std::string& name) {
    Transaction transaction(*m_database, OpenFor::Writing);
    m_database->Run("DELETE FROM baselines WHERE name = $1", std::vector<Value>{ValueOf(name)});
    transaction.Commit();
}

std::vector<KeptBaseline> Store::Baselines() {
    Transaction transaction(*m_database, OpenFor::Reading);
    std::vector<KeptBaseline> baselines;
    m_database->Query("SELECT baselines.name, runs.hash FROM baselines JOIN runs ON runs.id = "
                      "baselines.run",
                      {}, [&baselines](const ResultRow& row) {
                          baselines.push_back({TextOf(row, 0), TextOf(row, 1)});
                      });
    transaction.Commit();
    std::sort(
        baselines.begin(), baselines.end(),
        [](const KeptBaseline& one, const KeptBaseline& other) { return one.name < other.name; });
    return baselines;
}

void Store::ReadPowers(const RunFilter& filter, TextPool& texts,
                       const std::function<void(const KeptHistory&)>& begin,
                       const std::function<void(const KeptPower&)>& take) {
    Transaction transaction(*m_database, OpenFor::Reading);
    QueryPowers(*m_database, filter, texts, begin, take);
    transaction.Commit();
}

StoreCheck Store::Check() {
    StoreCheck check;
    for (const std::string& problem : m_database->IntegrityProblems())
        check.problems.push_back("the database is damaged: " + problem);
    CheckConfigurations(*m_database, check.problems);
    for (const KeptFacts& facts : List({})) {
        // Each run by itself: others may write meanwhile.
        Transaction transaction(*m_database, OpenFor::Reading);
        const std::optional<std::int64_t> number = NumberOf(*m_database, facts.hash);
        if (number) {
            ++check.runs;
            CheckRun(*m_database, *number, facts, check.problems);
            check.files += QueryFileNames(*m_database, *number).size();
        }
        transaction.Commit();
    }
    return check;
}

} // namespace Bench
