#pragma once

#include "Tools/SarvexTool/Bench/Core/Settings.h"
#include "Tools/SarvexTool/Bench/Files/Table.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

/// The number of each setting's cell in a line, from 1; 0 for a setting without a column.
using SettingColumns = std::array<std::uint32_t, SettingCount>;

/// What the table of a test file may hold.
const TableRules& TestFileRules();

SettingColumns ColumnsOf(const Table& table);

/// The settings that a row writes itself, in texts of the pool.
Settings SettingsOf(const TableRow& row, const SettingColumns& columns, TextPool& pool);

/// Reads the lines of a test file that has no errors: then these are the cells that the client
/// reads, on every system.
class PlanLines {
public:
    /// The bytes and the pool outlive it.
    PlanLines(std::string_view bytes, TextPool& pool);

    /// The settings that have a column, in the header's order.
    const std::vector<Setting>& Columns() const { return m_order; }

    /// Reads the settings that the next line writes itself; false at the end.
    bool Read(LineNumber& line, Settings& own);

private:
    Table m_table;
    TextPool& m_pool;
    SettingColumns m_columns;
    std::vector<Setting> m_order;
    TableRow m_row;
};

/// Adds a header of these columns, as a line of a test file.
void AppendHeader(std::string& text, const std::vector<Setting>& columns);

/// Adds a line that writes all of these settings out that there are; at least one column.
void AppendLine(std::string& text, const std::vector<Setting>& columns, const Settings& settings);

} // namespace Bench
