#include "Tools/SarvexTool/Bench/Commands/ExportedRun.h"
#include "Tools/SarvexTool/Bench/Commands/HistoryCommands.h"
#include "Tools/SarvexTool/Bench/Commands/HistoryOptions.h"
#include "Tools/SarvexTool/Bench/Commands/Outputs.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/KeptFiles.h"
#include "Tools/SarvexTool/Bench/Output/HistoryJson.h"
#include "Tools/SarvexTool/Bench/Output/HistoryText.h"
#include "Tools/SarvexTool/Bench/Output/Phrases.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Bench {

namespace {

struct ListArguments {
    std::optional<std::string> store;
    FilterArguments filter;
    std::optional<std::string> json;
};

int List(const ListArguments& arguments, Surroundings& surroundings) {
    const RunFilter filter = FilterOf(arguments.filter);
    std::vector<KeptFacts> runs;
    std::vector<KeptBaseline> baselines;
    const std::vector<Output> outputs{
        {arguments.json, [&](std::ostream& stream) { WriteRunsJson(stream, runs, baselines); }}};
    RequireDistinctFiles({}, NamesOf(outputs), arguments.store);
    const Console& console = ConsoleBeside(outputs, surroundings);
    std::optional<Store> store = OpenIfKept(arguments.store, console);
    if (store) {
        runs = store->List(filter);
        baselines = store->Baselines();
    }
    WriteOutputs(outputs, surroundings);
    if (store)
        PrintRuns(console.stream, runs, baselines);
    return ExitCode::Fine;
}

struct ShowArguments {
    std::string run;
    std::optional<std::string> store;
    std::optional<std::string> json;
};

int Show(const ShowArguments& arguments, Surroundings& surroundings) {
    KeptFacts run;
    std::vector<KeptFile> files;
    std::vector<KeptBaseline> baselines;
    const std::vector<Output> outputs{{arguments.json, [&](std::ostream& stream) {
                                           WriteRunJson(stream, run, files, baselines);
                                       }}};
    RequireDistinctFiles({}, NamesOf(outputs), arguments.store);
    Store store = OpenToRead(arguments.store);
    run = store.Find(arguments.run);
    files = store.ListFiles(run.hash);
    baselines = store.Baselines();
    WriteOutputs(outputs, surroundings);
    PrintRun(ConsoleBeside(outputs, surroundings).stream, run, files, baselines);
    return ExitCode::Fine;
}

struct ExportArguments {
    std::string run;
    std::string output;
    std::optional<std::string> store;
};

int Export(const ExportArguments& arguments, Surroundings& surroundings) {
    if (arguments.output.empty() || arguments.output == StandardStreamName)
        throw WrongUsage("-o needs the name of a folder");
    RequireDistinctFiles({}, {arguments.output}, arguments.store);
    Store store = OpenToRead(arguments.store);
    const KeptFacts run = store.Find(arguments.run);
    const std::vector<KeptContent> files = store.FilesOf(run.hash);
    WriteKeptFiles(arguments.output, files);
    surroundings.out.stream << "Wrote " << Counted(files.size(), "file") << " of " << PhraseOf(run)
                            << " into\n  " << MakeHarmless(arguments.output) << "\n";
    PrintHowToKeep(surroundings.out.stream, run, arguments.output);
    return ExitCode::Fine;
}

struct RemoveArguments {
    std::vector<std::string> runs;
    std::optional<std::string> store;
    bool isSure = false;
    bool withBaselines = false;
};

/// Whether somebody says yes; the end of the input is a no.
bool IsWanted(const KeptFacts& run, Surroundings& surroundings) {
    surroundings.err.stream << "Remove " << PhraseOf(run) << "? [y/N] " << std::flush;
    std::string answer;
    std::getline(surroundings.in, answer);
    if (answer.ends_with('\r'))
        answer.pop_back();
    return answer == "y" || answer == "Y" || answer == "yes";
}

/// Each once. A wrong one is told before any is gone.
std::vector<KeptFacts> RunsToRemove(Store& store, const RemoveArguments& arguments) {
    std::vector<KeptFacts> runs;
    for (const std::string& name : arguments.runs) {
        KeptFacts run = store.Find(name);
        if (!arguments.withBaselines)
            store.RequireNoBaseline(run.hash);
        if (std::find(runs.begin(), runs.end(), run) == runs.end())
            runs.push_back(std::move(run));
    }
    return runs;
}

int Remove(const RemoveArguments& arguments, Surroundings& surroundings) {
    OpenToRead(arguments.store);
    Store store = OpenToWrite(arguments.store);
    int exitCode = ExitCode::Fine;
    for (const KeptFacts& run : RunsToRemove(store, arguments)) {
        if (!arguments.isSure && !IsWanted(run, surroundings)) {
            surroundings.out.stream << "Not removed: " << PhraseOf(run) << ".\n";
            exitCode = ExitCode::Found;
            continue;
        }
        store.Remove(run.hash, arguments.withBaselines);
        surroundings.out.stream << "Removed " << PhraseOf(run) << ".\n" << std::flush;
    }
    return exitCode;
}

int Check(const std::optional<std::string>& name, Surroundings& surroundings) {
    Store store = OpenToRead(name);
    const StoreCheck check = store.Check();
    for (const std::string& problem : check.problems)
        surroundings.out.stream << MakeHarmless(problem) << "\n";
    surroundings.out.stream << Counted(check.runs, "run") << " and " << Counted(check.files, "file")
                            << " looked at: "
                            << (check.problems.empty() ? "files and powers are as they were kept"
                                                       : Counted(check.problems.size(), "problem"))
                            << ".\n";
    return check.problems.empty() ? ExitCode::Fine : ExitCode::Found;
}

constexpr const char* runHelp =
    "The first digits of its hash, at least 4, or the name of a baseline";

} // namespace

Command AddHistoryList(Options history) {
    const Options app = history.AddSubcommand("list", "Tell which runs are kept");
    const auto arguments = std::make_shared<ListArguments>();
    AddStoreOption(app, arguments->store);
    AddFilterOptions(app, arguments->filter);
    app.Add("--json", arguments->json, "Write all as JSON, - for standard output").TypeName("FILE");
    app.Footer("Exit code: 0 told, 2 wrong usage, or a store that cannot be read.");
    return {app,
            [arguments](Surroundings& surroundings) { return List(*arguments, surroundings); }};
}

Command AddHistoryShow(Options history) {
    const Options app = history.AddSubcommand("show", "Tell all of a kept run");
    const auto arguments = std::make_shared<ShowArguments>();
    app.Add("RUN", arguments->run, runHelp).Required().TypeName("");
    AddStoreOption(app, arguments->store);
    app.Add("--json", arguments->json, "Write all as JSON, - for standard output").TypeName("FILE");
    app.Footer("Exit code: 0 told, 2 wrong usage, no such run, or a store that cannot be read.");
    return {app,
            [arguments](Surroundings& surroundings) { return Show(*arguments, surroundings); }};
}

Command AddHistoryExport(Options history) {
    const Options app =
        history.AddSubcommand("export", "Write the files of a kept run as they were");
    const auto arguments = std::make_shared<ExportArguments>();
    app.Add("RUN", arguments->run, runHelp).Required().TypeName("");
    app.Add("-o,--output", arguments->output, "Folder for the files, one that is not there yet")
        .Required()
        .TypeName("DIR");
    AddStoreOption(app, arguments->store);
    app.Footer("Exit code: 0 written, 2 wrong usage, no such run, a store that cannot be read, or "
               "a folder that cannot be written.");
    return {app,
            [arguments](Surroundings& surroundings) { return Export(*arguments, surroundings); }};
}

Command AddHistoryRemove(Options history) {
    const Options app = history.AddSubcommand("remove", "Remove kept runs");
    const auto arguments = std::make_shared<RemoveArguments>();
    app.Add("RUN", arguments->runs, runHelp).Required().TypeName("");
    AddStoreOption(app, arguments->store);
    app.AddFlag("--yes", arguments->isSure, "Do not ask");
    app.AddFlag("--force", arguments->withBaselines, "Remove baselines, too");
    app.Footer("Exit code: 0 removed, 1 not all, because somebody said no, 2 wrong usage, no such "
               "run, a baseline, or a store that cannot be written.");
    return {app,
            [arguments](Surroundings& surroundings) { return Remove(*arguments, surroundings); }};
}

Command AddHistoryCheck(Options history) {
    const Options app = history.AddSubcommand("check", "Tell whether all is as it was kept");
    const auto store = std::make_shared<std::optional<std::string>>();
    AddStoreOption(app, *store);
    app.Footer("Exit code: 0 all is as it was kept, 1 something is not, 2 wrong usage, or a store "
               "that cannot be read.");
    return {app, [store](Surroundings& surroundings) { return Check(*store, surroundings); }};
}

} // namespace Bench
