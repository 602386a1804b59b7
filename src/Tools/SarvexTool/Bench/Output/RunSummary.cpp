#include "Tools/SarvexTool/Bench/Output/RunSummary.h"

#include "Tools/SarvexTool/Bench/Output/Phrases.h"
#include "Tools/SarvexTool/Bench/Output/ProgressText.h"
#include "Tools/SarvexTool/Bench/Output/ShellArgument.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"
#include "Tools/SarvexTool/Bench/Output/ShownWidth.h"
#include "Tools/SarvexTool/Bench/Output/TextTable.h"

#include <numeric>

namespace Bench {

namespace {

void PrintText(std::ostream& stream, const std::string& text, std::size_t indent = 0) {
    stream << WrapText(MakeHarmless(text), indent);
}

/// On a line to itself, so that it can be copied however long it is.
void PrintCommand(std::ostream& stream, const std::string& command) {
    stream << "  " << MakeHarmless(command) << "\n";
}

void PrintEnd(std::ostream& stream, const RunSummary& summary) {
    const std::string lines =
        std::to_string(summary.linesDone) + " of " + Counted(summary.linesTotal, "line");
    if (summary.isComplete)
        PrintText(stream, "The run is complete: " + lines + ".");
    else
        PrintText(stream, "The run ended early, after " + lines + ": " + summary.whyEnded + ".");
}

void PrintOutcomes(std::ostream& stream, const OutcomeCounts& outcomes) {
    std::string text;
    for (std::size_t index = 0; index < OutcomeCount; ++index) {
        const auto outcome = static_cast<Outcome>(index);
        if (outcomes.Count(outcome) > 0)
            text += (text.empty() ? "" : ", ") + std::to_string(outcomes.Count(outcome)) + " " +
                    NameOf(outcome);
    }
    PrintText(stream,
              Counted(outcomes.Total(), "measurement") + (text.empty() ? "" : ": ") + text + ".");
}

void PrintMissing(std::ostream& stream, const RunSummary& summary) {
    const std::size_t all = summary.outcomes.NotMeasured();
    const std::size_t shown = summary.missing.size();
    if (shown == 0)
        return;
    PrintText(stream, shown < all ? "Not measured, the first " + std::to_string(shown) + " of " +
                                        std::to_string(all) + ":"
                                  : std::string("Not measured:"));
    for (const MissingMeasurement& missing : summary.missing) {
        const ChainOutcome& outcome = missing.outcome;
        const std::string chain =
            missing.chain == Chain::None ? "" : std::string(", chain ") + NameOf(missing.chain);
        PrintText(stream,
                  "  line " + std::to_string(missing.line) + chain + ": " +
                      NameOf(outcome.outcome) + (outcome.text.empty() ? "" : ": ") + outcome.text,
                  4);
    }
}

/// Where the results are, and what can be done with them.
void PrintCommands(std::ostream& stream, const RunSummary& summary) {
    stream << "The results are in\n";
    PrintCommand(stream, summary.directory);
    const std::size_t passed = static_cast<std::size_t>(Verdict::Pass);
    if (summary.verdicts && summary.limits &&
        std::accumulate(summary.verdicts->begin(), summary.verdicts->end(), std::size_t{0}) !=
            summary.verdicts->at(passed)) {
        stream << "To see what did not pass:\n";
        PrintCommand(stream, "SarvexToolBench judge " + ShellArgument(summary.directory) +
                                 " --limits " + ShellArgument(*summary.limits));
    }
    if (!summary.isComplete) {
        stream << "To go on with the next line:\n";
        PrintCommand(stream, "SarvexToolBench run --resume " + ShellArgument(summary.directory));
    }
}

void PrintStopProblem(std::ostream& stream, const RunSummary& summary) {
    if (!summary.unconfirmedStop)
        return;
    stream << "\n";
    PrintText(stream, "The transmitter may still be ON. The daemon has not confirmed the stop: " +
                          *summary.unconfirmedStop + ". Switch the device off, or stop it with");
    PrintCommand(stream,
                 "SarvexToolBench stop" +
                     (summary.daemon.empty() ? "" : " --daemon " + ShellArgument(summary.daemon)));
}

} // namespace

void PrintSummary(std::ostream& stream, const RunSummary& summary) {
    PrintEnd(stream, summary);
    PrintOutcomes(stream, summary.outcomes);
    if (summary.verdicts)
        PrintText(stream, "Held against the limits: " + VerdictsText(*summary.verdicts) + ".");
    PrintMissing(stream, summary);
    for (const std::string& note : summary.notes)
        PrintText(stream, "Note: " + note, 2);
    if (!summary.directory.empty())
        PrintCommands(stream, summary);
    if (summary.hasTransmitted && !summary.unconfirmedStop)
        stream << "The daemon has confirmed the last stop.\n";
    PrintStopProblem(stream, summary);
    stream.flush();
}

} // namespace Bench
