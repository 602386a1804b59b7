#include "Tools/SarvexTool/Bench/History/Rows.h"

#include "Tools/SarvexTool/Bench/History/StoredText.h"

#include <algorithm>
#include <bit>
#include <span>
#include <utility>

namespace Bench {

namespace {

/// Of one statement. Statements of 1, 2, 4 and more rows insert any number of rows, so that a
/// database prepares few.
constexpr std::size_t mostRows = 128;

} // namespace

Value ValueOf(std::string_view text) {
    return StoredText(text);
}

Value OptionalValueOf(const std::optional<std::string>& text) {
    return text ? ValueOf(*text) : Value();
}

std::string TextOf(const ResultRow& row, std::size_t column) {
    return TextOfStored(row.Text(column));
}

std::optional<std::string> OptionalTextOf(const ResultRow& row, std::size_t column) {
    return row.IsNull(column) ? std::nullopt : std::optional(TextOf(row, column));
}

RowInserter::RowInserter(Database& database, std::string table, std::string columns,
                         std::size_t width)
    : m_database(database),
      m_begin("INSERT INTO " + std::move(table) + "(" + std::move(columns) + ") VALUES "),
      m_width(width) {
    m_values.reserve(mostRows * width);
}

void RowInserter::Add(Value value) {
    m_values.push_back(std::move(value));
    if (m_values.size() == mostRows * m_width)
        Insert(mostRows);
}

void RowInserter::Finish() {
    while (!m_values.empty())
        Insert(std::bit_floor(m_values.size() / m_width));
}

void RowInserter::Insert(std::size_t rows) {
    std::string statement = m_begin;
    for (std::size_t row = 0; row < rows; ++row)
        statement += (row == 0 ? "(" : ", (") + Placeholders(1 + row * m_width, m_width) + ")";
    const std::size_t values = rows * m_width;
    m_database.Run(statement, std::span(m_values).first(values));
    m_values.erase(m_values.begin(), m_values.begin() + static_cast<std::ptrdiff_t>(values));
}

std::string Placeholders(std::size_t first, std::size_t count) {
    std::string text;
    for (std::size_t number = first; number < first + count; ++number)
        text += (number == first ? "$" : ", $") + std::to_string(number);
    return text;
}

} // namespace Bench
