#include "Tools/SarvexTool/Bench/Commands/HistoryCommands.h"
#include "Tools/SarvexTool/Bench/Commands/HistoryOptions.h"
#include "Tools/SarvexTool/Bench/Commands/Outputs.h"
#include "Tools/SarvexTool/Bench/Core/KeptTrend.h"
#include "Tools/SarvexTool/Bench/Core/Nearest.h"
#include "Tools/SarvexTool/Bench/Files/LimitsFile.h"
#include "Tools/SarvexTool/Bench/Output/Page/HistoryPage.h"
#include "Tools/SarvexTool/Bench/Output/Phrases.h"
#include "Tools/SarvexTool/Bench/Output/ShownTime.h"
#include "Tools/SarvexTool/Bench/Output/TrendJson.h"
#include "Tools/SarvexTool/Bench/Output/TrendText.h"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Bench {

namespace {

struct TrendArguments {
    std::optional<std::string> store;
    FilterArguments filter;
    std::vector<std::string> words;
    std::optional<std::string> limits;
    std::optional<std::string> html;
    std::optional<std::string> json;
};

constexpr const char* chainName = "Chain";

/// The place among the settings and the chain, which comes last, that a name is of.
std::size_t PlaceOf(const std::string& name) {
    std::array<const char*, SettingCount + 1> names{};
    for (std::size_t index = 0; index < SettingCount; ++index)
        names.at(index) = NameOf(static_cast<Setting>(index));
    names.back() = chainName;
    for (std::size_t index = 0; index < names.size(); ++index) {
        if (name == names.at(index))
            return index;
    }
    const std::string_view nearest = NearestName(name, names);
    throw WrongUsage("there is no setting \"" + name + "\"" +
                     (nearest.empty() ? "" : "; did you mean \"" + std::string(nearest) + "\"?"));
}

/// One of "Band=5" and "Chain=A".
void AddWord(const std::string& word, WantedItems& wanted) {
    const std::size_t sign = word.find('=');
    if (sign == std::string::npos)
        throw WrongUsage("\"" + word + "\" is no SETTING=VALUE, as Band=5 or Chain=A is");
    const std::size_t place = PlaceOf(word.substr(0, sign));
    const std::string value = word.substr(sign + 1);
    if (place < SettingCount ? wanted.settings.at(place).has_value() : wanted.chain.has_value())
        throw WrongUsage("\"" + word.substr(0, sign) + "\" is given more than once");
    if (place < SettingCount) {
        wanted.settings.at(place) = value;
        return;
    }
    if (value != NameOf(Chain::A) && value != NameOf(Chain::B))
        throw WrongUsage("\"" + word + "\" names no chain; write Chain=A or Chain=B");
    wanted.chain = value == NameOf(Chain::A) ? Chain::A : Chain::B;
}

WantedItems WantedOf(const std::vector<std::string>& words) {
    WantedItems wanted;
    for (const std::string& word : words)
        AddWord(word, wanted);
    return wanted;
}

/// A trend of kept runs, with what it refers to. It stays where it is.
class KeptRunsTrend {
public:
    KeptRunsTrend(const TrendArguments& arguments, Surroundings& surroundings)
        : m_filter(FilterOf(arguments.filter)),
          m_wanted(WantedOf(arguments.words)),
          m_shownStore(StoreNameOf(arguments.store).Shown()) {
        if (arguments.limits) {
            m_limits.emplace(ReadLimits(*arguments.limits, surroundings.in, m_texts));
            m_facts.push_back({"Limits", *arguments.limits});
        }
        for (const std::string& phrase : PhrasesOf(arguments.filter))
            m_facts.push_back({"Only", phrase});
        for (const std::string& word : arguments.words)
            m_facts.push_back({"Only", word});
        Store store = OpenToRead(arguments.store);
        Read(store);
        if (m_limits)
            m_limitOfItem = LimitsOf(m_data, *m_limits);
        m_trend = TrendOf(m_data, LimitsOrNull());
    }
    KeptRunsTrend(const KeptRunsTrend&) = delete;
    KeptRunsTrend& operator=(const KeptRunsTrend&) = delete;

    const Trend& Found() const { return m_trend; }
    const std::vector<KeptFacts>& Runs() const { return m_runs; }

    NamedTrend Named(const std::optional<std::string>& limitsName) const {
        return {m_data, m_trend, PowersOf(m_data, LimitsOrNull()), limitsName};
    }

    HistoryPage PageOf(const char* kind, const NamedTrend& named,
                       const std::vector<KeptFacts>* runs) const {
        std::vector<PageFact> facts{{"Runs", std::to_string(m_runs.size())}};
        if (!m_runs.empty())
            facts.push_back({"Measured", ShownMinute(m_runs.front().measuredAt) + " to " +
                                             ShownMinute(m_runs.back().measuredAt) + " UTC"});
        facts.insert(facts.end(), m_facts.begin(), m_facts.end());
        return {kind, m_shownStore, std::move(facts), named, runs};
    }

private:
    void Read(Store& store) {
        std::optional<KeptTrend> powers;
        store.ReadPowers(
            m_filter, m_texts,
            [&](const KeptHistory& history) {
                m_runs = history.runs;
                powers.emplace(history, m_filter, m_wanted);
            },
            [&](const KeptPower& power) { powers->Add(power); });
        if (!powers)
            return;
        m_data = powers->Take();
        m_data.followedTo = std::min(m_filter.before.value_or(Now()), Now());
    }

    const std::vector<const Limit*>* LimitsOrNull() const {
        return m_limits ? &m_limitOfItem : nullptr;
    }

    RunFilter m_filter;
    WantedItems m_wanted;
    std::string m_shownStore;
    TextPool m_texts;
    std::optional<LimitTable> m_limits;
    std::vector<PageFact> m_facts;
    std::vector<KeptFacts> m_runs;
    TrendData m_data;
    std::vector<const Limit*> m_limitOfItem;
    Trend m_trend;
};

std::vector<std::string> InputsOf(const TrendArguments& arguments) {
    return arguments.limits ? std::vector{*arguments.limits} : std::vector<std::string>();
}

int TellTrend(const TrendArguments& arguments, Surroundings& surroundings) {
    std::optional<KeptRunsTrend> trend;
    std::optional<NamedTrend> named;
    const std::vector<Output> outputs{
        {arguments.json, [&](std::ostream& stream) { WriteJson(stream, *named); }},
        {arguments.html, [&](std::ostream& stream) {
             WriteHistoryPage(trend->PageOf("Trend of transmit power tests", *named, nullptr),
                              stream);
         }}};
    RequireDistinctFiles(InputsOf(arguments), NamesOf(outputs), arguments.store);
    trend.emplace(arguments, surroundings);
    named.emplace(trend->Named(arguments.limits));
    WriteOutputs(outputs, surroundings);
    PrintTrend(ConsoleBeside(outputs, surroundings), *named);
    return trend->Found().IsFine() ? ExitCode::Fine : ExitCode::Found;
}

int Overview(const TrendArguments& arguments, Surroundings& surroundings) {
    RequireDistinctFiles(InputsOf(arguments), {*arguments.html}, arguments.store);
    const KeptRunsTrend trend(arguments, surroundings);
    const NamedTrend named = trend.Named(arguments.limits);
    WriteOutputs({{arguments.html,
                   [&](std::ostream& stream) {
                       WriteHistoryPage(
                           trend.PageOf("Kept transmit power tests", named, &trend.Runs()), stream);
                   }}},
                 surroundings);
    return ExitCode::Fine;
}

void AddOptions(Options app, TrendArguments& arguments) {
    AddStoreOption(app, arguments.store);
    AddFilterOptions(app, arguments.filter);
    app.Add("--limits", arguments.limits,
            "Count the powers that are out of these limits, - for standard input")
        .TypeName("FILE");
}

} // namespace

Command AddHistoryTrend(Options history) {
    const Options app =
        history.AddSubcommand("trend", "Follow the benches over time, and tell which one drifts");
    const auto arguments = std::make_shared<TrendArguments>();
    app.Add("SETTING", arguments->words,
            "Only measurements with that setting, as Band=5 or Chain=A")
        .TypeName("");
    AddOptions(app, *arguments);
    app.Add("--html", arguments->html, "Write an HTML page, - for standard output")
        .TypeName("FILE");
    app.Add("--json", arguments->json, "Write all as JSON, - for standard output").TypeName("FILE");
    app.Footer(
        "Exit code: 0 no bench drifts now, 1 a bench drifts, a power is out of its limits or "
        "missing where it was last asked for, no power has a limit of those given, or what is kept "
        "does not tell (too few runs, devices mixed, nothing shared, not followed, erratic), 2 "
        "wrong usage, a store or a file that cannot be read, or a file that cannot be written.");
    return {app, [arguments](Surroundings& surroundings) {
                return TellTrend(*arguments, surroundings);
            }};
}

Command AddHistoryReport(Options history) {
    const Options app =
        history.AddSubcommand("report", "Show the kept runs and their benches as one HTML page");
    const auto arguments = std::make_shared<TrendArguments>();
    arguments->html.emplace();
    app.Add("-o,--output", *arguments->html, "The page to write, - for standard output")
        .Required()
        .TypeName("FILE");
    AddOptions(app, *arguments);
    app.Footer("Exit code: 0 the page is written, whatever it tells, 2 wrong usage, a store or a "
               "file that cannot be read, or a file that cannot be written.");
    return {app,
            [arguments](Surroundings& surroundings) { return Overview(*arguments, surroundings); }};
}

} // namespace Bench
