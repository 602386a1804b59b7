#include "Tools/SarvexTool/Bench/Files/PlanLines.h"

#include <algorithm>

namespace Bench {

const TableRules& TestFileRules() {
    static const TableRules rules = [] {
        TableRules made;
        for (const PowerTest::ColumnCommand& row : PowerTest::columnCommands)
            made.columns.push_back(row.column);
        return made;
    }();
    return rules;
}

SettingColumns ColumnsOf(const Table& table) {
    SettingColumns columns{};
    for (std::size_t index = 0; index < SettingCount; ++index) {
        const auto place = table.PlaceOf(index);
        columns[index] = place ? static_cast<std::uint32_t>(*place + 1) : 0;
    }
    return columns;
}

Settings SettingsOf(const TableRow& row, const SettingColumns& columns, TextPool& pool) {
    Settings own;
    for (std::size_t index = 0; index < SettingCount; ++index) {
        const std::uint32_t column = columns[index];
        if (column == 0 || column > row.cells.size())
            continue;
        const std::string_view text = row.cells[column - 1].text;
        if (!text.empty() && text != PowerTest::unsetCell)
            own[static_cast<Setting>(index)] = pool.Keep(text);
    }
    return own;
}

PlanLines::PlanLines(std::string_view bytes, TextPool& pool)
    : m_table(bytes, TestFileRules()), m_pool(pool), m_columns(ColumnsOf(m_table)) {
    for (std::size_t index = 0; index < SettingCount; ++index) {
        if (m_columns[index] != 0)
            m_order.push_back(static_cast<Setting>(index));
    }
    const auto columnOf = [this](Setting setting) {
        return m_columns[static_cast<std::size_t>(setting)];
    };
    std::sort(m_order.begin(), m_order.end(),
              [&](Setting left, Setting right) { return columnOf(left) < columnOf(right); });
}

bool PlanLines::Read(LineNumber& line, Settings& own) {
    if (!m_table.Read(m_row))
        return false;
    line = m_row.line;
    own = SettingsOf(m_row, m_columns, m_pool);
    return true;
}

void AppendHeader(std::string& text, const std::vector<Setting>& columns) {
    for (const Setting column : columns)
        text.append(column == columns.front() ? "" : ",").append(NameOf(column));
    text += '\n';
}

void AppendLine(std::string& text, const std::vector<Setting>& columns, const Settings& settings) {
    for (const Setting column : columns) {
        const std::string* const pText = settings[column];
        text.append(column == columns.front() ? "" : ",");
        if (pText != nullptr)
            text.append(*pText);
        else
            text.append(PowerTest::unsetCell);
    }
    text += '\n';
}

} // namespace Bench
