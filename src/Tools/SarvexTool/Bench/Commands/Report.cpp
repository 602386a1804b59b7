#include "Tools/SarvexTool/Bench/Commands/Subcommands.h"

#include "Tools/SarvexTool/Bench/Commands/HistoryOptions.h"
#include "Tools/SarvexTool/Bench/Commands/KeptResult.h"
#include "Tools/SarvexTool/Bench/Commands/OptionValues.h"
#include "Tools/SarvexTool/Bench/Commands/Outputs.h"
#include "Tools/SarvexTool/Bench/Commands/PageFacts.h"
#include "Tools/SarvexTool/Bench/Files/LimitsFile.h"
#include "Tools/SarvexTool/Bench/Files/ResultFile.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Bench {

namespace {

struct ReportOptions {
    std::string result;
    std::optional<std::string> limits;
    std::optional<std::string> baseline;
    std::optional<std::string> store;
    std::string output;
    std::optional<std::string> groupBy;
};

/// Whether the baseline is a kept run. Of a store it is one, whatever files there are.
bool IsBaselineKept(const ReportOptions& options) {
    return options.baseline && (options.store || !IsPath(*options.baseline));
}

/// The tolerance that compare has unless it is told another.
constexpr Decimal Tolerance() {
    return Decimal::FromUnits(500'000'000);
}

/// What the page refers to. It stays where it is: its parts refer to each other.
class ReportData {
public:
    ReportData(const ReportOptions& options, Surroundings& surroundings)
        : m_names(NamesOf(options.result)),
          m_result(ReadResult(m_names, surroundings.in, m_texts)),
          m_page{"Transmit power report", SubjectOf(m_names.table), FactsOf(m_names, m_result),
                 m_result.run} {
        const std::optional<PlacePart> groupBy = GroupByOf(options.groupBy);
        RequireTold(groupBy, std::array<const Sources*, 1>{&m_result.run.sources});
        m_page.groupBy = ToldPart(m_result.run.sources, groupBy);
        if (options.limits)
            Judge(*options.limits, surroundings);
        if (options.baseline)
            Compare(options, surroundings);
    }
    ReportData(const ReportData&) = delete;
    ReportData& operator=(const ReportData&) = delete;

    const Page& Shown() const { return m_page; }
    /// Null without limits.
    const LimitTable* UsedLimits() const { return m_limits ? &*m_limits : nullptr; }

private:
    void Judge(const std::string& limits, Surroundings& surroundings) {
        m_limits.emplace(ReadLimits(limits, surroundings.in, m_texts));
        m_judgements = Bench::Judge(m_result.run, *m_limits);
        m_page.judgements = &m_judgements;
        m_page.facts.push_back({"Limits", SubjectOf(limits)});
    }

    void Compare(const ReportOptions& options, Surroundings& surroundings) {
        ResultNames names = NamesOf(*options.baseline);
        if (!IsBaselineKept(options)) {
            m_old = ReadResult(names, surroundings.in, m_texts);
        } else {
            NamedResult kept = ReadKept(*options.baseline, options.store, m_texts);
            names = std::move(kept.names);
            m_old = std::move(kept.result);
        }
        m_differences = Bench::Compare(m_old.run, m_result.run, Tolerance());
        m_baseline.emplace(PageBaseline{m_old.run, m_differences, Tolerance()});
        m_page.baseline = &*m_baseline;
        for (PageFact& fact : FactsOfBaseline(names, m_old))
            m_page.facts.push_back(std::move(fact));
    }

    TextPool m_texts;
    ResultNames m_names;
    Result m_result;
    std::optional<LimitTable> m_limits;
    Judgements m_judgements;
    Result m_old;
    Differences m_differences;
    std::optional<PageBaseline> m_baseline;
    Page m_page;
};

std::vector<std::string> InputsOf(const ReportOptions& options) {
    std::vector<std::string> inputs = NamesOf(options.result).All();
    if (options.limits)
        inputs.push_back(*options.limits);
    if (options.baseline && !IsBaselineKept(options)) {
        const std::vector<std::string> baseline = NamesOf(*options.baseline).All();
        inputs.insert(inputs.end(), baseline.begin(), baseline.end());
    }
    return inputs;
}

int Report(const ReportOptions& options, Surroundings& surroundings) {
    if (options.store && !options.baseline)
        throw WrongUsage("--store needs --baseline");
    if (IsBaselineKept(options))
        RequireDistinctFiles(InputsOf(options), {options.output}, options.store);
    else
        RequireDistinctFiles(InputsOf(options), {options.output});
    const ReportData data(options, surroundings);
    WriteOutputs({{options.output, [&data](std::ostream& out) { WritePage(data.Shown(), out); }}},
                 surroundings);
    if (data.UsedLimits() != nullptr)
        PrintProblems(surroundings.err, *options.limits, NeedlessLimits(*data.UsedLimits()));
    return ExitCode::Fine;
}

} // namespace

Command AddReport(Options program) {
    const Options app = program.AddSubcommand("report", "Show a run as one HTML page");
    const auto options = std::make_shared<ReportOptions>();
    app.Add("RESULT", options->result,
            "result.csv or the folder that holds it, - for standard input")
        .Required()
        .TypeName("");
    app.Add("--limits", options->limits, "Table of limits, - for standard input").TypeName("FILE");
    app.Add("--baseline", options->baseline,
            "result.csv of another run to hold this one against, or its folder; or a "
            "kept run: the name of a baseline, or digits of its hash. With --store always "
            "a kept run")
        .TypeName("RESULT");
    AddStoreOption(app, options->store);
    app.Add("-o,--output", options->output, "The page to write, - for standard output")
        .Required()
        .TypeName("FILE.html");
    app.Add("--group-by", options->groupBy,
            "What the table of benches is by: bench, device or attempt")
        .TypeName("PART");
    app.Footer("Exit code: 0 the page is written, whatever the verdict, 2 wrong usage, or a file "
               "that cannot be read or written.");
    return {app, [options](Surroundings& surroundings) { return Report(*options, surroundings); }};
}

} // namespace Bench
