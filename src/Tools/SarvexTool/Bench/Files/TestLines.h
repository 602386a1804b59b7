#pragma once

#include "Tools/SarvexTool/Bench/Core/Configurations.h"
#include "Tools/Vemo/VemoClient/DynamicTest/PowerTable.h"

#include <cstdint>
#include <fstream>
#include <optional>
#include <span>
#include <string>

namespace Bench {

/// A line of a test file.
struct TestLine {
    LineNumber number = 0;
    /// As the client reads it, without its end.
    std::string text;
    OwnSettings own;
};

/// Reads a test file forward as the client does: in the system's text mode, with the client's own
/// rules for cells. Memory does not grow with the file.
class TestLines {
public:
    /// Reads the header; that of an empty file is empty. Throws BadInput when the file cannot be
    /// read.
    explicit TestLines(std::string name);

    const std::string& Header() const { return m_header; }

    /// Whether the client knows all columns. Where it does not, its result.csv has no header, and
    /// no line has settings.
    bool IsHeaderKnown() const { return m_isHeaderKnown; }

    /// Reads the next line; false at the end. Throws BadInput when the file cannot be read to it.
    bool Read(TestLine& line);

private:
    bool ReadLine(std::string& text);
    std::optional<std::string> OwnText(const char* column, const PowerTest::Fields& cells) const;

    std::string m_name;
    std::ifstream m_file;
    std::string m_header;
    bool m_isHeaderKnown = false;
    /// Empty where not all of them are known.
    PowerTest::ColumnIndex m_columns;
    LineNumber m_last = 1;
};

/// How many lines a test file has without its header. Throws BadInput.
std::uint64_t CountTestLines(const std::string& name);

/// Writes a test file of a header and some lines, so that the client reads them as they are. The
/// file is made anew. Throws BadOutput when it cannot be written.
void WriteSegment(const std::string& name, const std::string& header,
                  std::span<const std::string> lines);

} // namespace Bench
