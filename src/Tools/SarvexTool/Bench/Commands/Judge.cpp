#include "Tools/SarvexTool/Bench/Commands/Subcommands.h"

#include "Tools/SarvexTool/Bench/Commands/OptionValues.h"
#include "Tools/SarvexTool/Bench/Commands/Outputs.h"
#include "Tools/SarvexTool/Bench/Files/LimitsFile.h"
#include "Tools/SarvexTool/Bench/Files/ResultFile.h"
#include "Tools/SarvexTool/Bench/Output/Csv.h"
#include "Tools/SarvexTool/Bench/Output/Json.h"
#include "Tools/SarvexTool/Bench/Output/Junit.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"
#include "Tools/SarvexTool/Bench/Output/Text.h"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Bench {

namespace {

struct JudgeOptions {
    std::string result;
    std::string limits;
    std::optional<std::string> junit;
    std::optional<std::string> json;
    std::optional<std::string> csv;
    std::optional<std::string> groupBy;
};

int Judge(const JudgeOptions& options, Surroundings& surroundings) {
    const std::optional<PlacePart> groupBy = GroupByOf(options.groupBy);
    const ResultNames names = NamesOf(options.result);
    Judgements judgements;
    Result result;
    const JudgedRun judged{
        {names.table, result.run, result.device}, options.limits, judgements, groupBy};
    const std::vector<Output> outputs{
        {options.junit, [&judged](std::ostream& stream) { WriteJunit(stream, judged); }},
        {options.json, [&judged](std::ostream& stream) { WriteJson(stream, judged); }},
        {options.csv, [&judged](std::ostream& stream) { WriteCsv(stream, judged); }}};
    std::vector<std::string> inputs = names.All();
    inputs.push_back(options.limits);
    RequireDistinctFiles(inputs, NamesOf(outputs));

    TextPool texts;
    LimitTable table(ReadLimits(options.limits, surroundings.in, texts));
    result = ReadResult(names, surroundings.in, texts);
    RequireTold(groupBy, std::array<const Sources*, 1>{&result.run.sources});
    judgements = Judge(result.run, table);
    WriteOutputs(outputs, surroundings);
    PrintJudgements(ConsoleBeside(outputs, surroundings), judged);
    PrintProblems(surroundings.err, options.limits, NeedlessLimits(table));
    return judgements.HaveAllPassed() ? ExitCode::Fine : ExitCode::Found;
}

} // namespace

Command AddJudge(Options program) {
    const Options app =
        program.AddSubcommand("judge", "Hold the measurements of a run against limits");
    const auto options = std::make_shared<JudgeOptions>();
    app.Add("RESULT", options->result,
            "result.csv or the folder that holds it, - for standard input")
        .Required()
        .TypeName("");
    app.Add("--limits", options->limits, "Table of limits, - for standard input")
        .Required()
        .TypeName("FILE");
    app.Add("--junit", options->junit, "Write a JUnit report, - for standard output")
        .TypeName("FILE");
    app.Add("--json", options->json, "Write all as JSON, - for standard output").TypeName("FILE");
    app.Add("--csv", options->csv, "Write a table for spreadsheets, - for standard output")
        .TypeName("FILE");
    app.Add("--group-by", options->groupBy, "Count by bench, device or attempt, and not by band")
        .TypeName("PART");
    app.Footer("Exit code: 0 all pass, 1 something did not pass, 2 wrong usage, or a file that "
               "cannot be read or written.");
    return {app, [options](Surroundings& surroundings) { return Judge(*options, surroundings); }};
}

} // namespace Bench
