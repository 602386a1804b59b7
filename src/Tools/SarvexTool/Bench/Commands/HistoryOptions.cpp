#include "Tools/SarvexTool/Bench/Commands/HistoryOptions.h"

#include "Modules/xFramework/OSAL/Process.h"
#include "Tools/SarvexTool/Bench/Commands/Outputs.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/UtcTime.h"
#include "Tools/SarvexTool/Bench/History/Database.h"
#include "Tools/SarvexTool/Bench/History/Migrations.h"

#include <chrono>
#include <stdexcept>
#include <utility>

namespace Bench {

namespace {

Store Open(const StoreName& name, OpenFor purpose) {
    std::unique_ptr<Database> database = OpenDatabase(name, purpose);
    if (purpose == OpenFor::Writing)
        Migrate(*database);
    else if (VersionOf(*database) == 0)
        throw StoreMissing(name.Shown(), "holds no run yet");
    return Store(std::move(database));
}

/// The file of a store, and those that SQLite makes beside it, or beside the file that a link leads
/// to; none of a server.
std::vector<std::string> FilesOf(const StoreName& store) {
    if (store.IsServer())
        return {};
    std::vector<std::string> files{store.File()};
    const std::string database = NameOf(EndOfLinks(PathOf(store.File())));
    for (const char* ending : {"-journal", "-wal", "-shm"})
        files.push_back(database + ending);
    return files;
}

std::int64_t SecondsOf(std::chrono::system_clock::time_point time) {
    return std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
}

} // namespace

StoreName StoreNameOf(const std::optional<std::string>& store) {
    try {
        return store ? StoreName::Parse(*store) : StoreName::Default(OSAL::EnvironmentVariable);
    } catch (const std::invalid_argument& wrong) {
        throw WrongUsage(std::string(store ? "--store: " : "SARVEXTOOL_STORE: ") + wrong.what());
    }
}

Store OpenToWrite(const std::optional<std::string>& store) {
    return Open(StoreNameOf(store), OpenFor::Writing);
}

Store OpenToRead(const std::optional<std::string>& store) {
    return Open(StoreNameOf(store), OpenFor::Reading);
}

std::optional<Store> OpenIfKept(const std::optional<std::string>& store, const Console& console) {
    const StoreName name = StoreNameOf(store);
    try {
        return Open(name, OpenFor::Reading);
    } catch (const StoreMissing&) {
        // A store that somebody has named is looked for.
        if (!name.IsUsersOwn())
            throw;
        console.stream << "No run is kept yet.\n";
        return std::nullopt;
    }
}

void RequireDistinctFiles(const std::vector<std::string>& inputs,
                          const std::vector<std::string>& outputs,
                          const std::optional<std::string>& store) {
    std::vector<std::string> files = FilesOf(StoreNameOf(store));
    files.insert(files.end(), inputs.begin(), inputs.end());
    RequireDistinctFiles(files, outputs);
}

void AddStoreOption(Options app, std::optional<std::string>& store) {
    app.Add("--store", store,
            "Where runs are kept: a file, or postgresql://HOST/DATABASE. Without it "
            "$SARVEXTOOL_STORE, or a file in the user's folder for data")
        .TypeName("STORE");
}

void AddFilterOptions(Options app, FilterArguments& arguments) {
    app.Add("--since", arguments.since,
            "Runs measured then or later, as 2026-03-09 or "
            "2026-03-09T08:05:00Z")
        .TypeName("TIME");
    app.Add("--until", arguments.until, "Runs measured then or before; a day counts whole")
        .TypeName("TIME");
    app.Add("--bench", arguments.bench,
            "Runs measured on that bench; unknown: those of which nothing tells it")
        .TypeName("NAME");
    app.Add("--device", arguments.device, "Runs of that device").TypeName("NAME");
    app.Add("--firmware", arguments.firmware, "Runs with that firmware").TypeName("TEXT");
    app.Add("--file", arguments.file, "Runs of a test file of that name, without folders")
        .TypeName("NAME");
    app.Add("--verdict", arguments.verdict, "Runs judged so: pass, fail or \"not judged\"")
        .TypeName("VERDICT");
}

RunFilter FilterOf(const FilterArguments& arguments) {
    constexpr std::int64_t secondsOfDay = 86'400;
    RunFilter filter;
    if (arguments.since)
        filter.since = MomentOf("--since", *arguments.since);
    if (arguments.until)
        filter.before = MomentOf("--until", *arguments.until) +
                        (ParseUtcDay(*arguments.until) ? secondsOfDay : 1);
    if (filter.since && filter.before && *filter.since >= *filter.before)
        throw WrongUsage("--since " + *arguments.since + " is after --until " + *arguments.until);
    filter.bench = arguments.bench;
    filter.device = arguments.device;
    filter.firmware = arguments.firmware;
    filter.file = arguments.file;
    if (arguments.verdict) {
        filter.verdict = KeptVerdictNamed(*arguments.verdict);
        if (!filter.verdict)
            throw WrongUsage("--verdict " + *arguments.verdict +
                             " is none of pass, fail and \"not judged\"");
    }
    return filter;
}

std::vector<std::string> PhrasesOf(const FilterArguments& arguments) {
    std::vector<std::string> phrases;
    const auto add = [&phrases](const char* what, const std::optional<std::string>& value) {
        if (value)
            phrases.push_back(what + (" " + *value));
    };
    add("since", arguments.since);
    add("until", arguments.until);
    add("bench", arguments.bench);
    add("device", arguments.device);
    add("firmware", arguments.firmware);
    add("file", arguments.file);
    add("verdict", arguments.verdict);
    return phrases;
}

std::int64_t MomentOf(const std::string& option, const std::string& text) {
    if (const auto day = ParseUtcDay(text))
        return SecondsOf(*day);
    if (const auto time = ParseUtcTime(text))
        return SecondsOf(*time);
    throw WrongUsage(option + " " + text +
                     " is no time in UTC, as 2026-03-09 or 2026-03-09T08:05:00Z");
}

std::int64_t Now() {
    return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now())
        .time_since_epoch()
        .count();
}

} // namespace Bench
