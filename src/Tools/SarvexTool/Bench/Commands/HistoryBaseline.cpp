#include "Tools/SarvexTool/Bench/Commands/HistoryCommands.h"
#include "Tools/SarvexTool/Bench/Commands/HistoryOptions.h"
#include "Tools/SarvexTool/Bench/Commands/Outputs.h"
#include "Tools/SarvexTool/Bench/Output/HistoryJson.h"
#include "Tools/SarvexTool/Bench/Output/HistoryText.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Bench {

namespace {

struct SetArguments {
    std::string name;
    std::string run;
    std::optional<std::string> store;
};

std::optional<KeptBaseline> BaselineNamed(Store& store, const std::string& name) {
    for (const KeptBaseline& baseline : store.Baselines()) {
        if (baseline.name == name)
            return baseline;
    }
    return std::nullopt;
}

/// Throws NotKept.
KeptBaseline RequireBaseline(Store& store, const std::string& name) {
    if (std::optional<KeptBaseline> baseline = BaselineNamed(store, name))
        return *std::move(baseline);
    throw NotKept("there is no baseline " + name);
}

int Set(const SetArguments& arguments, Surroundings& surroundings) {
    // A store that is not there is not made.
    OpenToRead(arguments.store);
    Store store = OpenToWrite(arguments.store);
    const KeptFacts run = store.Find(arguments.run);
    const std::optional<KeptBaseline> former = BaselineNamed(store, arguments.name);
    store.SetBaseline(arguments.name, run.hash);
    surroundings.out.stream << "The baseline " << MakeHarmless(arguments.name) << " is "
                            << PhraseOf(run) << ".\n";
    if (former && former->hash != run.hash)
        surroundings.out.stream << "It was the run " << ShortHash(former->hash) << " before.\n";
    return ExitCode::Fine;
}

struct RemoveArguments {
    std::string name;
    std::optional<std::string> store;
};

int Remove(const RemoveArguments& arguments, Surroundings& surroundings) {
    OpenToRead(arguments.store);
    Store store = OpenToWrite(arguments.store);
    const KeptFacts run = store.Find(RequireBaseline(store, arguments.name).hash);
    store.RemoveBaseline(arguments.name);
    surroundings.out.stream << MakeHarmless(arguments.name) << " is no baseline any more; "
                            << PhraseOf(run) << " stays kept.\n";
    return ExitCode::Fine;
}

struct ShowArguments {
    std::optional<std::string> name;
    std::optional<std::string> store;
    std::optional<std::string> json;
};

/// All baselines, or that of the name.
std::vector<KeptBaseline> BaselinesOf(Store& store, const std::optional<std::string>& name) {
    return name ? std::vector{RequireBaseline(store, *name)} : store.Baselines();
}

int Show(const ShowArguments& arguments, Surroundings& surroundings) {
    std::vector<KeptBaseline> baselines;
    std::vector<KeptFacts> runs;
    const std::vector<Output> outputs{{arguments.json, [&baselines](std::ostream& stream) {
                                           WriteBaselinesJson(stream, baselines);
                                       }}};
    RequireDistinctFiles({}, NamesOf(outputs), arguments.store);
    Store store = OpenToRead(arguments.store);
    baselines = BaselinesOf(store, arguments.name);
    for (const KeptBaseline& baseline : baselines)
        runs.push_back(store.Find(baseline.hash));
    WriteOutputs(outputs, surroundings);
    PrintBaselines(ConsoleBeside(outputs, surroundings).stream, baselines, runs);
    return ExitCode::Fine;
}

Command AddSet(Options baseline) {
    const Options app = baseline.AddSubcommand("set", "Name a kept run as a baseline");
    const auto arguments = std::make_shared<SetArguments>();
    app.Add("NAME", arguments->name, "Its name; the run that had it has it no longer")
        .Required()
        .TypeName("");
    app.Add("RUN", arguments->run,
            "The first digits of its hash, at least 4, or the name of a baseline")
        .Required()
        .TypeName("");
    AddStoreOption(app, arguments->store);
    app.Footer("Exit code: 0 named, 2 wrong usage, no such run, or a store that cannot be "
               "written.");
    return {app, [arguments](Surroundings& surroundings) { return Set(*arguments, surroundings); }};
}

Command AddRemove(Options baseline) {
    const Options app =
        baseline.AddSubcommand("remove", "Take a name from its run, which stays kept");
    const auto arguments = std::make_shared<RemoveArguments>();
    app.Add("NAME", arguments->name, "Its name").Required().TypeName("");
    AddStoreOption(app, arguments->store);
    app.Footer("Exit code: 0 taken, 2 wrong usage, no such baseline, or a store that cannot be "
               "written.");
    return {app,
            [arguments](Surroundings& surroundings) { return Remove(*arguments, surroundings); }};
}

Command AddShow(Options baseline) {
    const Options app = baseline.AddSubcommand("show", "Tell which runs are baselines");
    const auto arguments = std::make_shared<ShowArguments>();
    app.Add("NAME", arguments->name, "Only the one of that name").TypeName("");
    AddStoreOption(app, arguments->store);
    app.Add("--json", arguments->json, "Write them as JSON, - for standard output")
        .TypeName("FILE");
    app.Footer("Exit code: 0 told, 2 wrong usage, no such baseline, or a store that cannot be "
               "read.");
    return {app,
            [arguments](Surroundings& surroundings) { return Show(*arguments, surroundings); }};
}

} // namespace

Command AddHistoryBaseline(Options history) {
    const Options app = history.AddSubcommand("baseline", "Name runs that others are held against");
    app.Footer("SarvexToolBench history baseline SUBCOMMAND --help tells of each.");
    return GroupOf(app, {AddSet(app), AddShow(app), AddRemove(app)});
}

} // namespace Bench
