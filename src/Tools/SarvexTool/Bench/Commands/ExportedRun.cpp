#include "Tools/SarvexTool/Bench/Commands/ExportedRun.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/KeptFiles.h"
#include "Tools/SarvexTool/Bench/Output/ShellArgument.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"
#include "Tools/SarvexTool/Bench/Output/ShownTime.h"

#include <optional>

namespace Bench {

namespace {

/// What history add makes of the files when nothing is told beside them.
struct OwnFacts {
    KeptFacts facts;
    bool isTimeOfFile = false;
    /// Whether history add takes them with --partial only.
    bool isPartial = false;
};

OwnFacts OwnFactsOf(const std::string& folder) {
    TextPool texts;
    KeepOptions options;
    try {
        const RunToKeep run = ReadRunToKeep(folder, options, texts);
        return {run.facts, run.isTimeOfFile, false};
    } catch (const BadInput&) {
        options.isPartial = true;
    }
    const RunToKeep run = ReadRunToKeep(folder, options, texts);
    return {run.facts, run.isTimeOfFile, true};
}

/// A value that begins as options do is not taken for one.
std::string Option(const std::string& name, const std::string& value) {
    return value.starts_with('-') ? " " + ShellArgument(name + "=" + value)
                                  : " " + name + " " + ShellArgument(value);
}

/// Empty where the files tell it themselves.
std::string Told(const std::string& name, const std::optional<std::string>& kept,
                 const std::optional<std::string>& own) {
    return kept && kept != own ? Option(name, *kept) : "";
}

std::string CommandToKeep(const KeptFacts& run, const OwnFacts& own, const std::string& folder) {
    return "SarvexToolBench history add " +
           ShellArgument((folder.starts_with('-') ? "./" : "") + folder) +
           Told("--bench", run.bench, own.facts.bench) +
           Told("--device", run.device, own.facts.device) +
           Told("--firmware", run.firmware, own.facts.firmware) +
           Told("--note", run.note, own.facts.note) +
           (own.isTimeOfFile ? Option("--measured", IsoTime(run.measuredAt)) : "") +
           (own.isPartial ? " --partial" : "") + " --store STORE";
}

} // namespace

void PrintHowToKeep(std::ostream& stream, const KeptFacts& run, const std::string& folder) {
    const OwnFacts own = OwnFactsOf(folder);
    const std::string command = CommandToKeep(run, own, folder);
    stream << "To keep it in another store, with what its files do not tell:\n  "
           << MakeHarmless(command) << "\n";
    if (MakeHarmless(command) != command)
        stream << "Characters that a terminal does not show are written out in it; history show "
                  "--json has the texts.\n";
    if (own.facts.name != run.name)
        stream << "Its name is that of the folder then, and not " << MakeHarmless(run.name)
               << ".\n";
    if (own.facts.verdict != run.verdict)
        stream << "Its verdict (" << NameOf(run.verdict)
               << ") is by limits that no file names; add --limits.\n";
}

} // namespace Bench
