#include "Tools/SarvexTool/Bench/Output/TrendText.h"

#include "Tools/SarvexTool/Bench/Output/Phrases.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"
#include "Tools/SarvexTool/Bench/Output/ShownTime.h"
#include "Tools/SarvexTool/Bench/Output/TextTable.h"
#include "Tools/SarvexTool/Bench/Output/TrendConclusion.h"

#include <algorithm>

namespace Bench {

namespace {

constexpr const char* boldGreen = "\x1B[1;32m";
constexpr const char* boldRed = "\x1B[1;31m";
constexpr const char* plain = "\x1B[0m";
constexpr const char* noFigure = "-";

void PrintConclusion(const Console& console, const NamedTrend& named) {
    const TrendConclusion conclusion = ConclusionOf(named.data, named.trend);
    const char* const colour = named.trend.IsFine() ? boldGreen : boldRed;
    console.stream << (console.hasColours ? colour + conclusion.word + plain : conclusion.word)
                   << ": ";
    for (const std::string& sentence : conclusion.sentences)
        console.stream << MakeHarmless(sentence) << "\n";
}

std::vector<std::string> RowOf(const NamedTrend& named, const StationTrend& station) {
    const TrendStation& told = named.data.stations[station.station];
    const std::optional<ControlLimits>& limits = station.limits;
    std::vector<std::string> row{told.name, DevicesOf(told), std::to_string(station.points.size())};
    row.push_back(station.offset ? SignedHundredths(*station.offset) : noFigure);
    row.push_back(limits ? SignedHundredths(limits->Lower()) : noFigure);
    row.push_back(limits ? SignedHundredths(limits->Upper()) : noFigure);
    row.push_back(station.points.empty() ? noFigure
                                         : SignedHundredths(station.points.back().median));
    row.push_back(limits ? std::to_string(station.beyond) : noFigure);
    if (named.trend.isJudged) {
        row.push_back(std::to_string(station.outOfLimits));
        row.push_back(std::to_string(station.withoutLimit));
    }
    return row;
}

void PrintStations(const Console& console, const NamedTrend& named) {
    if (named.trend.stations.empty())
        return;
    console.stream << "\nMedians of each run's differences from "
                   << (named.trend.basis == TrendBasis::OwnMean
                           ? "the station's own mean powers"
                           : "the reference, the median of the stations")
                   << ", in dB:\n";
    std::vector<std::string> titles{"Station", "Device", "runs", "offset",
                                    "lower",   "upper",  "last", "beyond"};
    if (named.trend.isJudged)
        titles.insert(titles.end(), {"out", "no limit"});
    TextTable table(std::move(titles), 2);
    for (const StationTrend& station : named.trend.stations)
        table.Add(RowOf(named, station));
    table.Print(console.stream);
}

/// The powers in dBm with the same number of digits after the point, which is then at one place.
std::vector<std::string> TextsOf(const std::vector<TrendPower>& powers) {
    std::vector<std::string> texts;
    std::size_t mostDigits = 0;
    const auto digitsOf = [](const std::string& text) {
        const std::size_t point = text.find('.');
        return point == std::string::npos ? 0 : text.size() - point - 1;
    };
    for (const TrendPower& power : powers) {
        texts.push_back(Rounded(power.power));
        mostDigits = std::max(mostDigits, digitsOf(texts.back()));
    }
    for (std::string& text : texts) {
        const std::size_t digits = digitsOf(text);
        text += (digits == 0 && mostDigits != 0 ? "." : "") + std::string(mostDigits - digits, '0');
    }
    return texts;
}

void PrintPowers(const Console& console, const NamedTrend& named) {
    if (named.powers.empty())
        return;
    const TrendItem& item = named.data.items.front();
    const std::string settings = PhraseOf(item.settings);
    console.stream << "\n"
                   << MakeHarmless(settings + (settings.empty() ? "chain " : ", chain "))
                   << NameOf(item.chain) << ", in dBm:\n";
    std::vector<std::string> titles{"Measured (UTC)", "Station", "Device", "Run", "power"};
    if (named.trend.isJudged)
        titles.emplace_back("limits");
    TextTable table(std::move(titles), 4);
    const std::vector<std::string> texts = TextsOf(named.powers);
    for (std::size_t place = 0; place < named.powers.size(); ++place) {
        const TrendPower& power = named.powers[place];
        const TrendVisit& visit = named.data.visits[power.visit];
        std::vector<std::string> row{ShownMinute(visit.measuredAt),
                                     named.data.stations[visit.station].name, DeviceOf(visit),
                                     visit.run, texts[place]};
        if (named.trend.isJudged)
            row.emplace_back(power.isOut ? "out" : "");
        table.Add(row);
    }
    table.Print(console.stream);
}

} // namespace

void PrintTrend(const Console& console, const NamedTrend& named) {
    PrintConclusion(console, named);
    PrintStations(console, named);
    PrintPowers(console, named);
}

} // namespace Bench
