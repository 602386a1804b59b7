#include "Tools/SarvexTool/Bench/Output/Text.h"

#include "Tools/SarvexTool/Bench/Core/Summaries.h"
#include "Tools/SarvexTool/Bench/Output/Phrases.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"
#include "Tools/SarvexTool/Bench/Output/TextTable.h"

namespace Bench {

namespace {

constexpr const char* boldGreen = "\x1B[1;32m";
constexpr const char* boldRed = "\x1B[1;31m";
constexpr const char* plain = "\x1B[0m";

void PrintConclusion(const Console& console, bool isGood, const std::string& word,
                     const std::string& text) {
    const char* const colour = isGood ? boldGreen : boldRed;
    console.stream << (console.hasColours ? colour + word + plain : word) << ": " << text << "\n";
}

void PrintRun(const Console& console, const NamedRun& result) {
    const DeviceFacts& device = result.device;
    console.stream << MakeHarmless(result.name) << ": "
                   << Counted(result.run.configurations.size(), "configuration") << ", "
                   << Counted(result.run.measurements.size(), "measurement") << "; country code "
                   << MakeHarmless(device.countryCode ? *device.countryCode
                                                      : "unknown: " + device.whyUnknown)
                   << "\n";
    if (result.run.unexpectedPowers != 0)
        console.stream << "  besides, " << Counted(result.run.unexpectedPowers, "power")
                       << " of chains that are not expected, which do not count\n";
    if (result.run.earlyEnd)
        console.stream << "  " << result.run.earlyEnd->ToText() << "\n";
}

/// A measurement's settings between brackets; nothing where none is known.
std::string Bracketed(const Settings& settings) {
    const std::string phrase = PhraseOf(settings);
    return phrase.empty() ? "" : " (" + phrase + ")";
}

std::string Decibels(const std::optional<Decimal>& number) {
    return number ? number->ToText() + " dB" : "-";
}

std::string PlaceOf(const RunResult& run, const Measurement& measurement) {
    return "line " + std::to_string(run.LineOf(measurement)) + " chain " +
           NameOf(measurement.chain);
}

/// For the summary, which fits a console of 80 columns.
std::string ShortPlaceOf(const RunResult& run, const Measurement& measurement) {
    return std::to_string(run.LineOf(measurement)) + " " + NameOf(measurement.chain);
}

std::vector<std::string> RowOf(const std::string& title, const VerdictCounts& counts,
                               const JudgedRun& judged) {
    std::vector<std::string> row{title};
    for (const std::size_t count : counts.counts)
        row.push_back(std::to_string(count));
    const Judgement* const worst = counts.worst ? &judged.judgements.all[*counts.worst] : nullptr;
    row.push_back(Decibels(worst != nullptr ? worst->margin : std::nullopt));
    const RunResult& run = judged.result.run;
    row.push_back(worst != nullptr ? ShortPlaceOf(run, run.measurements[worst->measurement]) : "-");
    return row;
}

void AddGroups(TextTable& table, const JudgementSummary& summary, const JudgedRun& judged) {
    if (!judged.groupBy) {
        for (const VerdictCounts& band : summary.bands)
            table.Add(RowOf(band.band == nullptr ? "unknown" : *band.band, band, judged));
        return;
    }
    for (const PlaceCounts& group :
         SummarizeBy(*judged.groupBy, judged.result.run, judged.judgements))
        table.Add(RowOf(group.name.value_or("unknown"), group.counts, judged));
}

void PrintSummary(const Console& console, const JudgedRun& judged) {
    const JudgementSummary summary = Summarize(judged.result.run, judged.judgements);
    std::vector<std::string> titles{judged.groupBy ? TitleOf(*judged.groupBy) : "Band"};
    for (std::size_t verdict = 0; verdict < VerdictCount; ++verdict)
        titles.emplace_back(NameOf(static_cast<Verdict>(verdict)));
    titles.emplace_back("worst margin");
    titles.emplace_back("at line");
    TextTable table(titles, 1);
    AddGroups(table, summary, judged);
    table.Add(RowOf("all", summary.all, judged));
    table.Print(console.stream);
}

/// Returns how many there are.
std::size_t PrintNotPassed(const Console& console, const JudgedRun& judged) {
    const RunResult& run = judged.result.run;
    const std::vector<std::uint32_t> places = NotPassed(judged.judgements);
    for (const std::uint32_t place : places) {
        const Judgement& judgement = judged.judgements.all[place];
        const Measurement& measurement = run.measurements[judgement.measurement];
        console.stream << PlaceOf(run, measurement) << ": "
                       << MakeHarmless(PhraseOf(run, judgement) +
                                       Bracketed(run.SettingsOf(measurement)))
                       << "\n";
    }
    return places.size();
}

/// Measurements, or the lines that were not run, or both.
std::string WhyNotPassed(const JudgedRun& judged) {
    const std::size_t count = judged.judgements.all.size();
    const std::size_t notPassed = count - judged.judgements.Count(Verdict::Pass);
    const std::optional<EarlyEnd>& earlyEnd = judged.result.run.earlyEnd;
    std::string text;
    if (notPassed != 0)
        text = std::to_string(notPassed) + " of " + Counted(count, "measurement") + " did not pass";
    if (earlyEnd)
        text += (text.empty() ? "" : ", and ") + earlyEnd->ToText();
    return text;
}

/// Where a difference is in the files.
std::string PlaceOf(const ComparedRuns& compared, const Difference& difference) {
    const auto lineOf = [](const NamedRun& result, const std::optional<std::uint32_t>& place) {
        return place ? result.run.LineOf(result.run.measurements[*place]) : LineNumber{0};
    };
    const LineNumber oldLine = lineOf(compared.oldResult, difference.oldMeasurement);
    const LineNumber newLine = lineOf(compared.newResult, difference.newMeasurement);
    if (oldLine == newLine)
        return "line " + std::to_string(oldLine);
    std::string text = oldLine == 0 ? "" : "old line " + std::to_string(oldLine);
    if (newLine != 0)
        text += (text.empty() ? "new line " : ", new line ") + std::to_string(newLine);
    return text;
}

std::string MeanText(double mean) {
    return (mean > 0 ? "+" : "") + Rounded(mean) + " dB";
}

TextTable TableOf(const std::vector<Shift>& shifts) {
    TextTable table({"Band", "Rate", "pairs", "mean shift"}, 2);
    for (const Shift& shift : shifts)
        table.Add({shift.band == nullptr ? "unknown" : *shift.band,
                   shift.rate == nullptr ? "unknown" : *shift.rate, std::to_string(shift.pairs),
                   MeanText(shift.mean)});
    return table;
}

TextTable TableOf(const std::vector<PlaceShift>& shifts, PlacePart part) {
    TextTable table({TitleOf(part), "pairs", "mean shift"}, 1);
    for (const PlaceShift& shift : shifts)
        table.Add(
            {shift.name.value_or("unknown"), std::to_string(shift.pairs), MeanText(shift.mean)});
    return table;
}

void PrintShifts(const Console& console, const ComparedRuns& compared) {
    // There are none by place where there are none by band.
    if (compared.differences.shifts.empty())
        return;
    const TextTable table = compared.groupBy
                                ? TableOf(ShiftsBy(*compared.groupBy, compared.oldResult.run,
                                                   compared.newResult.run, compared.differences),
                                          *compared.groupBy)
                                : TableOf(compared.differences.shifts);
    table.Print(console.stream);
    console.stream << "\n";
}

void PrintDifference(const Console& console, const ComparedRuns& compared,
                     const Difference& difference) {
    const RunResult& oldRun = compared.oldResult.run;
    const RunResult& newRun = compared.newResult.run;
    const RunResult& run = difference.oldMeasurement ? oldRun : newRun;
    const Measurement& measurement =
        run.measurements[difference.oldMeasurement ? *difference.oldMeasurement
                                                   : *difference.newMeasurement];
    console.stream << PlaceOf(compared, difference) << " chain " << NameOf(measurement.chain)
                   << ": "
                   << MakeHarmless(PhraseOf(oldRun, newRun, difference) +
                                   Bracketed(run.SettingsOf(measurement)))
                   << "\n";
}

std::string Conclusion(const Differences& differences, Decimal tolerance) {
    const std::size_t count = differences.all.size();
    return (count == 0 ? "no difference" : Counted(count, "difference")) + ", " +
           Counted(differences.pairs, "measurement") + (differences.pairs == 1 ? " is" : " are") +
           " in both runs; tolerance " + tolerance.ToText() + " dB" +
           (differences.hasEndedEarly ? "; not all lines were run" : "");
}

} // namespace

void PrintJudgements(const Console& console, const JudgedRun& judged) {
    PrintRun(console, judged.result);
    console.stream << "\n";
    PrintSummary(console, judged);
    console.stream << "\n";
    const Judgements& judgements = judged.judgements;
    const std::size_t count = judgements.all.size();
    if (judgements.HaveAllPassed()) {
        PrintConclusion(console, true, "PASS", Counted(count, "measurement"));
        return;
    }
    if (PrintNotPassed(console, judged) != 0)
        console.stream << "\n";
    PrintConclusion(console, false, "FAIL", WhyNotPassed(judged));
}

void PrintDifferences(const Console& console, const ComparedRuns& compared) {
    const Differences& differences = compared.differences;
    PrintRun(console, compared.oldResult);
    PrintRun(console, compared.newResult);
    if (differences.noise)
        console.stream << "noise of repeated lines: " << Rounded(*differences.noise)
                       << " dB (standard deviation)\n";
    console.stream << "\n";
    PrintShifts(console, compared);
    for (const Difference& difference : differences.all)
        PrintDifference(console, compared, difference);
    if (!differences.all.empty())
        console.stream << "\n";
    const char* const sameSoFar = differences.hasEndedEarly ? "NOT COMPLETE" : "ALIKE";
    PrintConclusion(console, differences.AreAlike(),
                    differences.all.empty() ? sameSoFar : "DIFFERENT",
                    Conclusion(differences, compared.tolerance));
}

} // namespace Bench
