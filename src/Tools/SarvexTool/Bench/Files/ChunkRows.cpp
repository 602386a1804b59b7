#include "Tools/SarvexTool/Bench/Files/ChunkRows.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/Vemo/VemoClient/DynamicTest/Columns.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace Bench {

namespace {

std::ifstream Opened(const std::string& name) {
    std::ifstream file(PathOf(name), std::ios::binary);
    if (!file)
        throw BadInput(name, "cannot be read");
    return file;
}

/// Whether a text is that of two cells, as the client adds them to a line.
bool AreTwoPowers(std::string_view text) {
    return text.starts_with(',') && std::count(text.begin(), text.end(), ',') == 2;
}

} // namespace

ChunkRows::ChunkRows(const std::string& runFolder, const std::string& chunkFile)
    : m_files(runFolder),
      m_lines(chunkFile),
      m_journalFile(Opened(m_files.journal)),
      m_journal(m_journalFile, m_files.journal),
      m_rows(Opened(m_files.result)) {
    m_line.number = 1;
    if (m_lines.IsHeaderKnown())
        ReadHeader();
}

void ChunkRows::Read(ChunkRow& row) {
    if (!m_journal.Read(row.entry))
        throw BadInput(m_files.journal, {{Severity::Error, m_line.number, 0,
                                          "the journal ends here, before the run's last line"}});
    if (!m_lines.Read(m_line) || row.entry.line != m_line.number)
        Fail(row.entry.line, "the row is of no line of the chunk");
    ReadLine();
    if (row.entry.csvEnd != m_end)
        Fail(m_line.number, "the row does not end where the journal says; the file was changed "
                            "after the run");
    const std::string_view whole = WithoutEnd();
    const std::string_view powers = whole.substr(std::min(m_line.text.size(), whole.size()));
    if (!whole.starts_with(m_line.text) || !AreTwoPowers(powers))
        Fail(m_line.number, "the row is not the chunk's line with two powers after it");
    row.powers = powers;
    row.own = m_line.own;
}

void ChunkRows::ReadHeader() {
    ReadLine();
    if (WithoutEnd() != m_lines.Header() + PowerTest::powerTitles)
        Fail(1, "the line is not the chunk's header with the titles of the powers after it");
}

void ChunkRows::ReadLine() {
    std::getline(m_rows, m_row);
    if (!m_rows.good())
        Fail(m_line.number, "the row is missing or cut off, although the journal has its line; "
                            "the file was changed after the run");
    m_end += m_row.size() + 1;
}

std::string_view ChunkRows::WithoutEnd() const {
    std::string_view row = m_row;
    if (row.ends_with('\r'))
        row.remove_suffix(1);
    return row;
}

void ChunkRows::Fail(LineNumber line, const std::string& what) const {
    throw BadInput(m_files.result, {{Severity::Error, line, 0, what}});
}

} // namespace Bench
