#include "Tools/SarvexTool/Bench/Commands/KeepRun.h"

#include "Tools/SarvexTool/Bench/Commands/HistoryOptions.h"
#include "Tools/SarvexTool/Bench/Files/KeptFiles.h"
#include "Tools/SarvexTool/Bench/Output/HistoryText.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"
#include "Tools/SarvexTool/Bench/Output/ShellArgument.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <optional>
#include <ostream>
#include <string>

namespace Bench {

namespace {

void Keep(RunDirectory& directory, std::ostream& stream) {
    TextPool texts;
    const RunToKeep run = ReadRunToKeep(directory.Files().directory, {}, texts);
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    Store store = OpenToWrite(directory.Facts().options.store);
    PrintAdded(stream, run.facts, store.Add(run, now.time_since_epoch().count()));
}

std::string CommandToKeep(RunDirectory& directory) {
    const std::optional<std::string>& store = directory.Facts().options.store;
    return "SarvexToolBench history add " + ShellArgument(directory.Files().directory) +
           (store ? " --store " + ShellArgument(*store) : "");
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
    const Console& err = console.Streams().err;
    std::ostream& stream = err.stream;
    if (directory.Facts().outcome != "complete") {
        stream << "The run is kept in the history when it is complete.\n";
        return exitCode;
    }
    try {
        // A server may keep it waiting.
        const EndRequests::Pause pause(console.Requests());
        Keep(directory, stream);
        return exitCode;
    } catch (const BadFile& bad) {
        PrintProblems(err, bad.File(), bad.Problems());
    } catch (const std::exception& error) {
        stream << MakeHarmless(error.what()) << "\n";
    }
    stream << "The run is not kept in the history. To keep it later:\n  "
           << MakeHarmless(CommandToKeep(directory)) << "\n";
    return std::max<int>(exitCode, ExitCode::Found);
}

} // namespace Bench
