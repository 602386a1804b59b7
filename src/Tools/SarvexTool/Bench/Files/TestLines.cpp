#include "Tools/SarvexTool/Bench/Files/TestLines.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/Vemo/VemoClient/DynamicTest/Columns.h"
#include "Tools/Vemo/VemoClient/DynamicTest/TestFile.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace Bench {

namespace {

std::string WithReason(const char* what, int error) {
    return what + (error == 0 ? "" : " (" + std::generic_category().message(error) + ")");
}

bool IsKnown(const std::string& title) {
    return std::any_of(
        PowerTest::columnCommands.begin(), PowerTest::columnCommands.end(),
        [&title](const PowerTest::ColumnCommand& row) { return row.column == title; });
}

} // namespace

TestLines::TestLines(std::string name) : m_name(std::move(name)) {
    errno = 0;
    m_file.open(PathOf(m_name));
    if (!m_file)
        throw BadInput(m_name, WithReason("cannot be read", errno));
    ReadLine(m_header);
    const PowerTest::Fields titles = PowerTest::SplitFields(m_header);
    m_isHeaderKnown = std::all_of(titles.begin(), titles.end(), IsKnown);
    if (m_isHeaderKnown)
        m_columns = PowerTest::IndexColumns(titles);
}

bool TestLines::Read(TestLine& line) {
    if (!ReadLine(line.text))
        return false;
    line.number = ++m_last;
    const PowerTest::Fields cells = PowerTest::SplitFields(line.text);
    for (std::size_t setting = 0; setting < SettingCount; ++setting)
        line.own.at(setting) = OwnText(NameOf(static_cast<Setting>(setting)), cells);
    return true;
}

bool TestLines::ReadLine(std::string& text) {
    errno = 0;
    const bool isRead = !std::getline(m_file, text).fail();
    if (m_file.bad())
        throw BadInput(m_name, WithReason("cannot be read to its end", errno));
    return isRead;
}

std::optional<std::string> TestLines::OwnText(const char* column,
                                              const PowerTest::Fields& cells) const {
    if (!PowerTest::IsColumnSet(m_columns, column, cells))
        return std::nullopt;
    return cells[m_columns.at(column)];
}

std::uint64_t CountTestLines(const std::string& name) {
    TestLines lines(name);
    std::uint64_t count = 0;
    for (TestLine line; lines.Read(line);)
        ++count;
    return count;
}

void WriteSegment(const std::string& name, const std::string& header,
                  std::span<const std::string> lines) {
    errno = 0;
    std::ofstream file(PathOf(name));
    file << header << '\n';
    for (const std::string& line : lines)
        file << line << '\n';
    file.close();
    if (!file)
        throw BadOutput(name, WithReason("cannot be written", errno));
}

} // namespace Bench
