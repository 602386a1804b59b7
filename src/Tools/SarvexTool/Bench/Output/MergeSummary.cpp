#include "Tools/SarvexTool/Bench/Output/MergeSummary.h"

#include "Tools/SarvexTool/Bench/Output/Phrases.h"
#include "Tools/SarvexTool/Bench/Output/ProgressText.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"
#include "Tools/SarvexTool/Bench/Output/ShownWidth.h"
#include "Tools/SarvexTool/Bench/Output/TextTable.h"

namespace Bench {

namespace {

/// "3 of 4 chunks"
std::string PartText(std::size_t part, std::size_t whole, const std::string& word) {
    return (part == whole ? "all " : std::to_string(part) + " of ") + Counted(whole, word);
}

void PrintBenches(std::ostream& stream, const std::vector<BenchShare>& benches) {
    if (benches.empty())
        return;
    TextTable table({"Bench", "chunks", "lines", "time"}, 1);
    for (const BenchShare& bench : benches)
        table.Add({bench.name.value_or("unknown"), std::to_string(bench.chunks),
                   std::to_string(bench.lines), ClockText(bench.seconds)});
    table.Print(stream);
}

} // namespace

void PrintSummary(std::ostream& stream, const MergeSummary& summary) {
    stream << WrapText(
        "Merged " + PartText(summary.linesDone, summary.linesTotal, "line") +
            "; complete: " + PartText(summary.chunksDone, summary.chunksTotal, "chunk") + ".",
        0);
    PrintBenches(stream, summary.benches);
    if (summary.otherAttempts != 0)
        stream << "Not used: " << Counted(summary.otherAttempts, "other attempt") << ".\n";
    stream << Counted(summary.measurements, "measurement") << ": " << summary.measured
           << " measured, " << summary.measurements - summary.measured << " not.\n";
    for (const std::string& note : summary.notes)
        stream << WrapText(MakeHarmless("Note: " + note), 2);
    stream << "The results are in\n  " << MakeHarmless(summary.directory) << "\n";
    stream.flush();
}

} // namespace Bench
