#include "Tools/SarvexTool/Bench/Commands/Compare.h"

#include "Tools/SarvexTool/Bench/Commands/Outputs.h"
#include "Tools/SarvexTool/Bench/Commands/PageFacts.h"
#include "Tools/SarvexTool/Bench/Core/Differences.h"
#include "Tools/SarvexTool/Bench/Files/ResultFile.h"
#include "Tools/SarvexTool/Bench/Output/Json.h"
#include "Tools/SarvexTool/Bench/Output/Junit.h"
#include "Tools/SarvexTool/Bench/Output/Text.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Bench {

namespace {

struct CompareOptions {
    std::string oldResult;
    std::string newResult;
    std::string tolerance = "0.5";
    std::optional<std::string> junit;
    std::optional<std::string> json;
    std::optional<std::string> html;
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
void WriteComparedPage(const ResultNames& oldNames, const ResultNames& newNames,
                       const ComparedRuns& compared, std::ostream& stream) {
    const PageBaseline baseline{compared.oldResult.run, compared.differences, compared.tolerance};
    std::vector<PageFact> facts =
        FactsOf(newNames, compared.newResult.run, compared.newResult.device);
    for (PageFact& fact :
         FactsOfBaseline(oldNames, compared.oldResult.run, compared.oldResult.device))
        facts.push_back(std::move(fact));
    WritePage({"Comparison of two transmit power tests", SubjectOf(newNames.table),
               std::move(facts), compared.newResult.run, nullptr, &baseline},
              stream);
}

int Compare(const CompareOptions& options, Surroundings& surroundings) {
    const Decimal tolerance = ReadTolerance(options.tolerance);
    const ResultNames oldNames = NamesOf(options.oldResult);
    const ResultNames newNames = NamesOf(options.newResult);
    Result oldResult;
    Result newResult;
    Differences differences;
    const ComparedRuns compared{{oldNames.table, oldResult.run, oldResult.device},
                                {newNames.table, newResult.run, newResult.device},
                                tolerance,
                                differences};
    const std::vector<Output> outputs{
        {options.junit, [&compared](std::ostream& stream) { WriteJunit(stream, compared); }},
        {options.json, [&compared](std::ostream& stream) { WriteJson(stream, compared); }},
        {options.html,
         [&](std::ostream& stream) { WriteComparedPage(oldNames, newNames, compared, stream); }}};
    RequireDistinctFiles(Both(oldNames.All(), newNames.All()), NamesOf(outputs));

    TextPool texts;
    oldResult = ReadResult(oldNames, surroundings.in, texts);
    newResult = ReadResult(newNames, surroundings.in, texts);
    // Two runs without a device would be alike, which nobody wants to hear.
    if (!HasPower(oldResult.run) && !HasPower(newResult.run))
        throw BadInput(newNames.table, "neither run has a power, so that there is nothing to "
                                       "compare; see why the daemon reported none");
    differences = Compare(oldResult.run, newResult.run, tolerance);
    WriteOutputs(outputs, surroundings);
    PrintDifferences(ConsoleBeside(outputs, surroundings), compared);
    return differences.AreAlike() ? ExitCode::Fine : ExitCode::Found;
}

} // namespace

Command AddCompare(CLI::App& program) {
    CLI::App* const app = program.add_subcommand("compare", "Tell what differs between two runs");
    const auto options = std::make_shared<CompareOptions>();
    app->add_option("OLD", options->oldResult,
                    "result.csv of the older run or the folder that holds it, - for standard input")
        ->required()
        ->type_name("");
    app->add_option("NEW", options->newResult, "The same of the newer run")
        ->required()
        ->type_name("");
    app->add_option("--tolerance", options->tolerance, "Changes of up to so many dB are none")
        ->type_name("DB")
        ->capture_default_str();
    app->add_option("--junit", options->junit, "Write a JUnit report, - for standard output")
        ->type_name("FILE");
    app->add_option("--json", options->json, "Write all as JSON, - for standard output")
        ->type_name("FILE");
    app->add_option("--html", options->html, "Write an HTML page, - for standard output")
        ->type_name("FILE");
    app->footer("Exit code: 0 alike, 1 different or a run that ended early, 2 wrong usage, a file "
                "that cannot be read or written, or two runs without any power.");
    return {app, [options](Surroundings& surroundings) { return Compare(*options, surroundings); }};
}

} // namespace Bench
