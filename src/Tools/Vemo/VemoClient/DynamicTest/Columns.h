#pragma once

#include <array>
#include <cstddef>

namespace PowerTest {

/// The column names of a test file, matched exactly and case-sensitively. That one says "unit"
/// where another says "Unit" is how the test files spell them.
namespace Column {
inline constexpr const char* band = "Band";
inline constexpr const char* chains = "Chains";
inline constexpr const char* bandwidth = "Bandwidth";
inline constexpr const char* channel = "Channel";
inline constexpr const char* bandwidthMode = "Bandwidth Mode";
inline constexpr const char* rate = "Rate";
inline constexpr const char* mode = "Mode";
inline constexpr const char* resourceUnit = "Resource Unit";
inline constexpr const char* specificResourceUnit = "Specific Resource unit";
inline constexpr const char* largeRuSize = "Large RU Size";
} // namespace Column

/// A column and the daemon's option that its cells drive.
struct ColumnCommand {
    const char* column;
    const char* option;
};

/// All columns, in the order in which their options are sent.
inline constexpr std::array<ColumnCommand, 10> columnCommands{
    {{Column::band, "-wifi-band"},
     {Column::chains, "-wifi-tx-chains-from-file"},
     {Column::bandwidth, "-wifi-bandwidth"},
     {Column::channel, "-wifi-channel"},
     {Column::bandwidthMode, "-wifi-bw-mode"},
     {Column::rate, "-wifi-rate"},
     {Column::mode, "-wifi-tx-transm-mode"},
     {Column::resourceUnit, "-wifi-resource-unit"},
     {Column::specificResourceUnit, "-wifi-specific-resource-unit"},
     {Column::largeRuSize, "-wifi-large-ru"}}};

/// A cell that leaves its column unset.
inline constexpr const char* unsetCell = "-";

/// What follows the test file's header in the header of result.csv. The titles are spelt
/// differently on purpose.
inline constexpr const char* powerTitles = ",Chain-A Power, Chain B Power";

/// Is in result.csv in place of a power that the daemon did not report.
inline constexpr const char* missingPower = "NA";

/// The columns whose cells are filed in the result tree, in the order in which they are looked up.
/// The mode is filed nowhere.
inline constexpr std::array<const char*, 9> resultColumns{
    Column::chains,     Column::band,          Column::channel,      Column::bandwidth,
    Column::rate,       Column::bandwidthMode, Column::resourceUnit, Column::specificResourceUnit,
    Column::largeRuSize};

/// An element on the path to a line's measurement. It is named after its column.
struct ResultLevel {
    const char* column;
    /// What follows the cell in the element's value.
    const char* unit;
};

/// The attribute of such an element that holds its value.
inline constexpr const char* valueAttribute = "value";

/// The path from the top.
inline constexpr std::array<ResultLevel, 4> resultLevels{
    {{Column::band, ""}, {Column::bandwidth, " MHz"}, {Column::channel, ""}, {Column::rate, ""}}};

/// An attribute of a measurement that holds a cell.
struct ResultAttribute {
    const char* name;
    const char* column;
};

/// In the order in which they are set.
inline constexpr std::array<ResultAttribute, 4> resultAttributes{
    {{"BandwidthMode", Column::bandwidthMode},
     {"ResourceUnit", Column::resourceUnit},
     {"SpecificResourceUnit", Column::specificResourceUnit},
     {"LargeRUSize", Column::largeRuSize}}};

/// The field of an extended line, counted from its end, whose power is filed for a Chains cell.
struct ChainPower {
    const char* chains;
    std::size_t fieldFromEnd;
};

/// "AB" files the power of chain A; that of chain B is in result.csv only. For any other cell
/// no power is filed.
inline constexpr std::array<ChainPower, 3> chainPowers{{{"A", 2}, {"AB", 2}, {"B", 1}}};

/// A chain as the daemon's target power line names it.
struct Chain {
    const char* letter;
    const char* number;
};

/// In the order of the two columns that end a row of result.csv.
inline constexpr std::array<Chain, 2> chains{{{"A", "1"}, {"B", "2"}}};

} // namespace PowerTest
