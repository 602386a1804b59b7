#pragma once

#include "Tools/SarvexTool/Bench/Core/Settings.h"
#include "Tools/SarvexTool/Bench/History/Database.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

/// The columns of the table of configurations that hold the settings, in their order.
inline constexpr std::string_view settingColumns =
    "band, chains, bandwidth, channel, bandwidth_mode, rate, mode, resource_unit, "
    "specific_resource_unit, large_ru_size";
static_assert(std::count(settingColumns.begin(), settingColumns.end(), ',') + 1 == SettingCount);

/// A text of any bytes as a value, and back; NULL for none.
Value ValueOf(std::string_view text);
Value OptionalValueOf(const std::optional<std::string>& text);
std::string TextOf(const ResultRow& row, std::size_t column);
std::optional<std::string> OptionalTextOf(const ResultRow& row, std::size_t column);

/// Inserts many rows of one table with few statements.
class RowInserter {
public:
    /// The columns as "run, part, bench", and how many they are. All outlive the inserter.
    RowInserter(Database& database, std::string table, std::string columns, std::size_t width);
    RowInserter(const RowInserter&) = delete;
    RowInserter& operator=(const RowInserter&) = delete;

    /// Adds a value; a row begins when the one before is full.
    void Add(Value value);

    /// Inserts what was added since the last statement. To be called at the end.
    void Finish();

private:
    void Insert(std::size_t rows);

    Database& m_database;
    std::string m_begin;
    std::size_t m_width;
    std::vector<Value> m_values;
};

/// "$1, $2", from a number on.
std::string Placeholders(std::size_t first, std::size_t count);

} // namespace Bench
