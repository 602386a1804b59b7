#include "Tools/SarvexTool/Bench/Output/Csv.h"

#include "Tools/SarvexTool/Bench/Output/ShownText.h"

#include <algorithm>
#include <array>

namespace Bench {

namespace {

/// What begins a formula, in its plain and in its wide form.
constexpr std::array<std::string_view, 8> formulaStarts{
    "=", "+", "-", "@", "\xEF\xBC\x9D", "\xEF\xBC\x8B", "\xEF\xBC\x8D", "\xEF\xBC\xA0"};

bool IsFormula(std::string_view text) {
    if (text == "-" || HasDecimalForm(text))
        return false;
    const std::string_view shown = text.substr(std::min(text.find_first_not_of(' '), text.size()));
    return std::any_of(formulaStarts.begin(), formulaStarts.end(),
                       [shown](std::string_view start) { return shown.starts_with(start); });
}

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char character : text)
        quoted.append(character == '"' ? 2 : 1, character);
    return quoted + "\"";
}

std::string NumberCell(const std::optional<Decimal>& number) {
    return number ? number->ToText() : "";
}

std::string Header(bool hasPlaces) {
    std::string header = "Line";
    for (std::size_t index = 0; index < SettingCount; ++index)
        header.append(",").append(NameOf(static_cast<Setting>(index)));
    header += ",Chain,Power,Minimum,Maximum,Verdict,Margin,Limit line,Reason";
    return header + (hasPlaces ? ",Bench,Device,Attempt\n" : "\n");
}

/// The cells of a place, which may not be known.
std::string PlaceCells(const RunPlace* place) {
    if (place == nullptr)
        return ",,,";
    return "," + CsvCell(place->bench.value_or("")) + "," + CsvCell(place->device.value_or("")) +
           "," + (place->attempt ? std::to_string(*place->attempt) : "");
}

std::string RowOf(const RunResult& run, const Judgement& judgement) {
    const Measurement& measurement = run.measurements[judgement.measurement];
    std::string row = std::to_string(run.LineOf(measurement));
    for (const std::string* const value : run.SettingsOf(measurement))
        row.append(",").append(value == nullptr ? "-" : CsvCell(*value));
    row.append(",").append(NameOf(measurement.chain));
    row.append(",").append(NumberCell(measurement.power));
    const Limit* const limit = judgement.limit;
    row.append(",").append(NumberCell(limit != nullptr ? limit->minimum : std::nullopt));
    row.append(",").append(NumberCell(limit != nullptr ? limit->maximum : std::nullopt));
    row.append(",").append(NameOf(judgement.verdict));
    row.append(",").append(NumberCell(judgement.margin));
    row.append(",").append(limit != nullptr ? std::to_string(limit->line) : "");
    row.append(",").append(measurement.power ? "" : CsvCell(measurement.reason.ToText()));
    if (!run.sources.All().empty())
        row += PlaceCells(run.PlaceOf(measurement));
    return row + "\n";
}

} // namespace

void WriteCsv(std::ostream& stream, const JudgedRun& judged) {
    stream << Header(!judged.result.run.sources.All().empty());
    for (const Judgement& judgement : judged.judgements.all)
        stream << RowOf(judged.result.run, judgement);
}

std::string CsvCell(std::string_view text) {
    std::string cell = MakeHarmless(text);
    if (IsFormula(cell))
        cell.insert(0, 1, '\'');
    return cell.find_first_of(",\";") == std::string::npos ? cell : Quoted(cell);
}

} // namespace Bench
