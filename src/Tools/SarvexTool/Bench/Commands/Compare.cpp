#include "Tools/SarvexTool/Bench/Commands/Subcommands.h"

#include "Tools/SarvexTool/Bench/Commands/HistoryOptions.h"
#include "Tools/SarvexTool/Bench/Commands/KeptResult.h"
#include "Tools/SarvexTool/Bench/Commands/OptionValues.h"
#include "Tools/SarvexTool/Bench/Commands/Outputs.h"
#include "Tools/SarvexTool/Bench/Commands/PageFacts.h"
#include "Tools/SarvexTool/Bench/Core/Differences.h"
#include "Tools/SarvexTool/Bench/Files/ResultFile.h"
#include "Tools/SarvexTool/Bench/Output/Json.h"
#include "Tools/SarvexTool/Bench/Output/Junit.h"
#include "Tools/SarvexTool/Bench/Output/Text.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Bench {

namespace {

struct CompareOptions {
    /// With a baseline, the only one.
    std::string oldResult;
    std::optional<std::string> newResult;
    std::optional<std::string> baseline;
    std::optional<std::string> store;
    std::string tolerance = "0.5";
    std::optional<std::string> junit;
    std::optional<std::string> json;
    std::optional<std::string> html;
    std::optional<std::string> groupBy;
};

Decimal ReadTolerance(const std::string& text) {
    const std::optional<Decimal> tolerance = Decimal::Parse(text);
    if (!tolerance || *tolerance < Decimal())
        throw WrongUsage("--tolerance " + text + " is no decimal number of 0 or more");
    return *tolerance;
}

bool HasPower(const RunResult& run) {
    return std::any_of(
        run.measurements.begin(), run.measurements.end(),
        [](const Measurement& measurement) { return measurement.power.has_value(); });
}

std::vector<std::string> Both(std::vector<std::string> names,
                              const std::vector<std::string>& others) {
    names.insert(names.end(), others.begin(), others.end());
    return names;
}

/// The older run is the page's baseline.
void WriteComparedPage(const NamedResult& older, const NamedResult& newer,
                       const ComparedRuns& compared, std::ostream& stream) {
    const PageBaseline baseline{compared.oldResult.run, compared.differences, compared.tolerance};
    std::vector<PageFact> facts = FactsOf(newer.names, newer.result);
    for (PageFact& fact : FactsOfBaseline(older.names, older.result))
        facts.push_back(std::move(fact));
    WritePage({"Comparison of two transmit power tests", SubjectOf(newer.names.table),
               std::move(facts), compared.newResult.run, nullptr, &baseline,
               ToldPart(compared.newResult.run.sources, compared.groupBy)},
              stream);
}

void RequireOutputsApart(const CompareOptions& options, const NamedResult& older,
                         const NamedResult& newer, const std::vector<std::string>& outputs) {
    if (options.baseline)
        RequireDistinctFiles(newer.names.All(), outputs, options.store);
    else
        RequireDistinctFiles(Both(older.names.All(), newer.names.All()), outputs);
}

void RequireTwoRuns(const CompareOptions& options) {
    if (options.baseline && options.newResult)
        throw WrongUsage("--baseline takes the place of OLD; name one run beside it");
    if (!options.baseline && !options.newResult)
        throw WrongUsage("NEW is required");
    if (options.store && !options.baseline)
        throw WrongUsage("--store needs --baseline");
}

/// Those of files; a kept one has been read.
void ReadRuns(const CompareOptions& options, const std::optional<PlacePart>& groupBy,
              Surroundings& surroundings, TextPool& texts, NamedResult& older, NamedResult& newer) {
    if (!options.baseline)
        older.result = ReadResult(older.names, surroundings.in, texts);
    newer.result = ReadResult(newer.names, surroundings.in, texts);
    RequireTold(groupBy, std::array<const Sources*, 2>{&newer.result.run.sources,
                                                       &older.result.run.sources});
    // Two runs without a device would be alike, which nobody wants to hear.
    if (!HasPower(older.result.run) && !HasPower(newer.result.run))
        throw BadInput(newer.names.table, "neither run has a power, so that there is nothing to "
                                          "compare; see why the daemon reported none");
}

int Compare(const CompareOptions& options, Surroundings& surroundings) {
    const Decimal tolerance = ReadTolerance(options.tolerance);
    const std::optional<PlacePart> groupBy = GroupByOf(options.groupBy);
    RequireTwoRuns(options);
    TextPool texts;
    NamedResult older;
    NamedResult newer;
    newer.names = NamesOf(options.baseline ? options.oldResult : *options.newResult);
    if (options.baseline)
        older = ReadKept(*options.baseline, options.store, texts);
    else
        older.names = NamesOf(options.oldResult);
    Differences differences;
    const ComparedRuns compared{{older.names.table, older.result.run, older.result.device},
                                {newer.names.table, newer.result.run, newer.result.device},
                                tolerance,
                                differences,
                                groupBy};
    const std::vector<Output> outputs{
        {options.junit, [&compared](std::ostream& stream) { WriteJunit(stream, compared); }},
        {options.json, [&compared](std::ostream& stream) { WriteJson(stream, compared); }},
        {options.html,
         [&](std::ostream& stream) { WriteComparedPage(older, newer, compared, stream); }}};
    RequireOutputsApart(options, older, newer, NamesOf(outputs));

    ReadRuns(options, groupBy, surroundings, texts, older, newer);
    differences = Compare(older.result.run, newer.result.run, tolerance);
    WriteOutputs(outputs, surroundings);
    PrintDifferences(ConsoleBeside(outputs, surroundings), compared);
    return differences.AreAlike() ? ExitCode::Fine : ExitCode::Found;
}

} // namespace

Command AddCompare(Options program) {
    const Options app = program.AddSubcommand("compare", "Tell what differs between two runs");
    const auto options = std::make_shared<CompareOptions>();
    app.Add("OLD", options->oldResult,
            "result.csv of the older run or the folder that holds it, - for standard input; "
            "of the only one with --baseline")
        .Required()
        .TypeName("");
    app.Add("NEW", options->newResult, "The same of the newer run; none with --baseline")
        .TypeName("");
    app.Add("--baseline", options->baseline,
            "A kept run instead of OLD: the name of a baseline, or digits of its hash")
        .TypeName("NAME");
    AddStoreOption(app, options->store);
    app.Add("--tolerance", options->tolerance, "Changes of up to so many dB are none")
        .TypeName("DB")
        .ShowDefault();
    app.Add("--junit", options->junit, "Write a JUnit report, - for standard output")
        .TypeName("FILE");
    app.Add("--json", options->json, "Write all as JSON, - for standard output").TypeName("FILE");
    app.Add("--html", options->html, "Write an HTML page, - for standard output").TypeName("FILE");
    app.Add("--group-by", options->groupBy,
            "Show shifts by bench, device or attempt, and not by band and rate")
        .TypeName("PART");
    app.Footer("Exit code: 0 alike, 1 different or a run that ended early, 2 wrong usage, a file "
               "that cannot be read or written, or two runs without any power.");
    return {app, [options](Surroundings& surroundings) { return Compare(*options, surroundings); }};
}

} // namespace Bench
