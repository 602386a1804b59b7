#include "Tools/SarvexTool/Bench/Files/ResultTreeWriter.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/Vemo/VemoClient/DynamicTest/PowerTable.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

namespace Bench {

namespace {

namespace fs = std::filesystem;

/// What went wrong and the system's reason.
std::string WithReason(const std::string& what, int error) {
    return error == 0 ? what : what + " (" + std::generic_category().message(error) + ")";
}

[[noreturn]] void FailAtLine(const std::string& table, LineNumber line, std::string what) {
    throw BadInput(table, {{Severity::Error, line, 0, std::move(what)}});
}

/// The lines of a result.csv, read in text mode, as the client writes them.
class RowLines {
public:
    explicit RowLines(const std::string& table) : m_table(table) {
        errno = 0;
        m_file.open(PathOf(table));
        if (!m_file.is_open())
            throw BadInput(table, WithReason("cannot be read", errno));
    }

    /// Whether there is another row, which is in Row afterwards.
    bool Next() {
        errno = 0;
        const bool hasRow = static_cast<bool>(std::getline(m_file, m_row));
        if (m_file.bad())
            throw BadInput(m_table, WithReason("cannot be read to its end", errno));
        ++m_line;
        // The client writes a row and its end in one piece.
        if (hasRow && m_file.eof())
            Fail("the line has no end, so that it is not whole");
        return hasRow;
    }

    const std::string& Row() const { return m_row; }
    [[noreturn]] void Fail(std::string what) const { FailAtLine(m_table, m_line, std::move(what)); }

private:
    const std::string& m_table;
    std::ifstream m_file;
    std::string m_row;
    LineNumber m_line = 0;
};

/// The columns that the test file gives to its lines: none when its header has an unknown one. The
/// client copies the header otherwise.
PowerTest::Fields ReadColumns(const std::string& header, RowLines& reader) {
    PowerTest::Fields fields = PowerTest::SplitFields(header);
    if (PowerTest::FindUnknownColumn(fields) != nullptr)
        return {};
    if (!reader.Next() || reader.Row() != header + PowerTest::powerTitles)
        reader.Fail("the line is not the header of the test file with the titles of the powers");
    return fields;
}

void FileRows(RowLines& reader, PowerTest::PowerTable& table) {
    constexpr std::size_t powers = 2;
    while (reader.Next()) {
        if (PowerTest::SplitFields(reader.Row()).size() < powers)
            reader.Fail("the line does not end in two powers");
        table.File(reader.Row());
    }
}

/// Writes the tree to a file that is not there yet, and removes what is not whole.
void WriteTree(const PowerTest::PowerTable& table, const std::string& tree) {
    const fs::path part = PathOf(tree + ".part");
    std::error_code ignored;
    errno = 0;
    std::ofstream file(part);
    if (!file.is_open())
        throw BadOutput(tree, WithReason("cannot be written", errno));
    const bool isWritten = table.Write(file);
    file.close();
    if (!isWritten || !file) {
        const int error = errno;
        fs::remove(part, ignored);
        throw BadOutput(tree, WithReason("cannot be written to its end", error));
    }
    std::error_code error;
    fs::rename(part, PathOf(tree), error);
    if (!error)
        return;
    fs::remove(part, ignored);
    throw BadOutput(tree, "cannot be replaced (" + error.message() + ")");
}

} // namespace

void WriteResultTree(const ResultRows& rows, const std::string& tree) {
    RowLines reader(rows.table);
    PowerTest::PowerTable table(ReadColumns(rows.header, reader), rows.countryCode);
    FileRows(reader, table);
    WriteTree(table, tree);
}

} // namespace Bench
