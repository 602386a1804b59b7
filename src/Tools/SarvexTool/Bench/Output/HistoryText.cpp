#include "Tools/SarvexTool/Bench/Output/HistoryText.h"

#include "Tools/SarvexTool/Bench/Output/Phrases.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"
#include "Tools/SarvexTool/Bench/Output/ShownTime.h"
#include "Tools/SarvexTool/Bench/Output/TextTable.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Bench {

namespace {

constexpr const char* unknown = "-";

std::string NamesOf(const KeptFacts& run, const std::vector<KeptBaseline>& baselines) {
    std::string names;
    for (const KeptBaseline& baseline : baselines) {
        if (baseline.hash == run.hash)
            names += (names.empty() ? "" : ", ") + baseline.name;
    }
    return names;
}

/// Of a merged run, what its parts do not share is told in a word.
std::string PlaceOf(const KeptFacts& run, std::optional<std::string> RunPlace::*text) {
    if (run.parts.empty())
        return unknown;
    const std::optional<std::string>& first = run.parts.front().*text;
    const bool isShared = std::all_of(run.parts.begin(), run.parts.end(),
                                      [&](const RunPlace& part) { return part.*text == first; });
    return isShared ? first.value_or(unknown) : "several";
}

/// "2 of 3"
std::string MeasuredOf(const KeptFacts& run) {
    return std::to_string(run.measured) + " of " + std::to_string(run.measurements);
}

std::vector<std::string> RowOf(const KeptFacts& run) {
    return {ShortHash(run.hash),
            ShownMinute(run.measuredAt),
            run.name,
            PlaceOf(run, &RunPlace::bench),
            PlaceOf(run, &RunPlace::device),
            run.firmware.value_or(unknown),
            NameOf(run.verdict)};
}

/// Prints names and values in two columns, without what is not known.
class FactsPrinter {
public:
    explicit FactsPrinter(std::ostream& stream) : m_stream(stream) {}

    void Add(const std::string& name, const std::string& value) {
        constexpr std::size_t width = 16;
        m_stream << name << ":" << std::string(width - name.size(), ' ') << MakeHarmless(value)
                 << "\n";
    }
    void AddIfKnown(const std::string& name, const std::optional<std::string>& value) {
        if (value)
            Add(name, *value);
    }

private:
    std::ostream& m_stream;
};

std::string TextOf(const RunPlace& part) {
    std::string text =
        "bench " + part.bench.value_or(unknown) + ", device " + part.device.value_or(unknown);
    if (part.attempt)
        text += ", attempt " + std::to_string(*part.attempt);
    return text;
}

} // namespace

std::string PhraseOf(const KeptFacts& run) {
    const std::string bench = PlaceOf(run, &RunPlace::bench);
    return MakeHarmless(run.name + ", measured " + ShownMinute(run.measuredAt) + " UTC" +
                        (bench == unknown ? "" : " on " + bench) + " (" + ShortHash(run.hash) +
                        ")");
}

void PrintAdded(std::ostream& stream, const KeptFacts& run, bool isNew) {
    stream << (isNew ? "Kept " : "Kept already: ") << PhraseOf(run);
    if (isNew)
        stream << ": " << Counted(run.measurements, "measurement") << ", " << run.measured
               << " measured"
               << (run.verdict == KeptVerdict::NotJudged
                       ? ""
                       : std::string(", verdict ") + NameOf(run.verdict));
    stream << ".\n";
}

void PrintRuns(std::ostream& stream, const std::vector<KeptFacts>& runs,
               const std::vector<KeptBaseline>& baselines) {
    if (runs.empty()) {
        stream << "No such run is kept.\n";
        return;
    }
    std::vector<std::string> titles{"Run",    "Measured (UTC)", "Name",   "Bench",
                                    "Device", "Firmware",       "Verdict"};
    const bool hasNames = std::any_of(runs.begin(), runs.end(), [&](const KeptFacts& run) {
        return !NamesOf(run, baselines).empty();
    });
    if (hasNames)
        titles.emplace_back("Baseline");
    const std::size_t leftColumns = titles.size();
    titles.emplace_back("Powers");
    TextTable table(std::move(titles), leftColumns);
    for (const KeptFacts& run : runs) {
        std::vector<std::string> row = RowOf(run);
        if (hasNames)
            row.push_back(NamesOf(run, baselines));
        row.push_back(MeasuredOf(run));
        table.Add(row);
    }
    table.Print(stream);
    stream << Counted(runs.size(), "run") << ".\n";
}

void PrintRun(std::ostream& stream, const KeptFacts& run, const std::vector<KeptFile>& files,
              const std::vector<KeptBaseline>& baselines) {
    FactsPrinter facts(stream);
    facts.Add("Run", run.hash);
    const std::string names = NamesOf(run, baselines);
    facts.AddIfKnown("Baseline", names.empty() ? std::nullopt : std::optional(names));
    facts.Add("Name", run.name);
    facts.Add("Measured", IsoTime(run.measuredAt));
    facts.Add("Kept", IsoTime(run.keptAt));
    for (const RunPlace& part : run.parts)
        facts.Add(run.parts.size() == 1 ? "Place" : "Part", TextOf(part));
    facts.AddIfKnown("Firmware", run.firmware);
    facts.AddIfKnown("Note", run.note);
    facts.AddIfKnown("User", run.user);
    facts.AddIfKnown("Host", run.host);
    facts.AddIfKnown("Daemon", run.daemon);
    if (run.macType)
        facts.Add("MAC type", std::to_string(*run.macType));
    facts.AddIfKnown("Country code", run.countryCode);
    facts.AddIfKnown("Test file", run.testFileSha256);
    facts.AddIfKnown("Outcome", run.outcome);
    facts.Add("Verdict", NameOf(run.verdict));
    facts.Add("Lines", std::to_string(run.lines));
    facts.Add("Powers", MeasuredOf(run) + " measurements");
    TextTable table({"File", "Bytes"}, 1);
    for (const KeptFile& file : files)
        table.Add({file.name, std::to_string(file.size)});
    stream << "\n";
    table.Print(stream);
}

void PrintBaselines(std::ostream& stream, const std::vector<KeptBaseline>& baselines,
                    const std::vector<KeptFacts>& runs) {
    if (baselines.empty()) {
        stream << "There is no baseline.\n";
        return;
    }
    TextTable table(
        {"Baseline", "Run", "Measured (UTC)", "Name", "Bench", "Device", "Firmware", "Verdict"}, 8);
    for (const KeptBaseline& baseline : baselines) {
        const auto run = std::find_if(runs.begin(), runs.end(), [&](const KeptFacts& each) {
            return each.hash == baseline.hash;
        });
        if (run == runs.end())
            continue;
        std::vector<std::string> row = RowOf(*run);
        row.insert(row.begin(), baseline.name);
        table.Add(row);
    }
    table.Print(stream);
}

} // namespace Bench
