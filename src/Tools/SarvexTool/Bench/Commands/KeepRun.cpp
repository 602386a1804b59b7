#include "Tools/SarvexTool/Bench/Commands/KeepRun.h"

#include "Tools/SarvexTool/Bench/Commands/HistoryOptions.h"
#include "Tools/SarvexTool/Bench/Files/KeptFiles.h"
#include "Tools/SarvexTool/Bench/Output/HistoryText.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"
#include "Tools/SarvexTool/Bench/Output/ShellArgument.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <future>
#include <optional>
#include <ostream>
#include <string>
#include <thread>
#include <utility>

namespace Bench {

namespace {

struct Added {
    KeptFacts run;
    bool isNew = false;
};

Added Keep(const std::string& directory, const std::optional<std::string>& storeName) {
    TextPool texts;
    const RunToKeep run = ReadRunToKeep(directory, {}, texts);
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    Store store = OpenToWrite(storeName);
    const bool isNew = store.Add(run, now.time_since_epoch().count());
    return {run.facts, isNew};
}

/// Nothing where the program is to end before the run is kept. It is being kept all the same then,
/// on a thread that ends with the program: a server, or a file in use, may keep it waiting.
std::optional<Added> KeepUntilUrgent(RunDirectory& directory, const EndRequests& requests) {
    constexpr std::chrono::milliseconds pause(20);
    std::packaged_task<Added()> task(
        [name = directory.Files().directory, store = directory.Facts().options.store] {
            return Keep(name, store);
        });
    std::future<Added> added = task.get_future();
    std::thread(std::move(task)).detach();
    while (added.wait_for(pause) != std::future_status::ready) {
        if (requests.AreUrgent())
            return std::nullopt;
    }
    return added.get();
}

std::string CommandToKeep(RunDirectory& directory) {
    const std::optional<std::string>& store = directory.Facts().options.store;
    return "SarvexToolBench history add " + ShellArgument(directory.Files().directory) +
           (store ? " --store " + ShellArgument(*store) : "");
}

void TellHowToKeep(std::ostream& stream, bool isLeft, RunDirectory& directory) {
    stream << (isLeft ? "The run may not be kept in the history. To keep it for certain:\n  "
                      : "The run is not kept in the history. To keep it later:\n  ")
           << MakeHarmless(CommandToKeep(directory)) << "\n";
}

} // namespace

void RequireStore(const RunFacts& facts, const RunFiles& files) {
    RequireDistinctFiles({},
                         {files.directory, files.testFile, files.result, files.tree, files.facts,
                          files.exchanges, files.journal, files.console, files.lock, files.client},
                         facts.options.store);
    OpenToWrite(facts.options.store).RequireWritable();
}

int KeepRun(RunDirectory& directory, int exitCode, RunConsole& console) {
    // That the stop was not confirmed are the last words. Resuming the run will change its files,
    // so that it would be kept as two runs.
    if (exitCode == ExitCode::StopNotConfirmed)
        return exitCode;
    std::ostream& stream = console.Streams().err.stream;
    if (directory.Facts().outcome != "complete") {
        stream << "The run is kept in the history when it is complete.\n";
        return exitCode;
    }
    bool isLeft = false;
    try {
        if (const std::optional<Added> added = KeepUntilUrgent(directory, console.Requests())) {
            PrintAdded(stream, added->run, added->isNew);
            return exitCode;
        }
        isLeft = true;
    } catch (const BadFile& bad) {
        PrintProblems(console.Streams().err, bad.File(), bad.Problems());
    } catch (const std::exception& error) {
        stream << MakeHarmless(error.what()) << "\n";
    }
    TellHowToKeep(stream, isLeft, directory);
    exitCode = std::max<int>(exitCode, ExitCode::Found);
    if (isLeft) {
        console.Finish(exitCode);
        // The thread that waits cannot be ended otherwise.
        std::_Exit(exitCode);
    }
    return exitCode;
}

} // namespace Bench
