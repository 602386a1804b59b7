#pragma once

#include "Tools/SarvexTool/Bench/Files/ClientFolder.h"
#include "Tools/SarvexTool/Bench/Files/RowReader.h"
#include "Tools/SarvexTool/Bench/Files/TestLines.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Bench {

/// Gives clients their stretches of a test file and takes their rows. No more than one stretch is
/// in memory.
class ClientFeed {
public:
    /// Goes on after a line of the test file; with its first one after 0 and 1. Throws BadInput
    /// when the file cannot be read.
    ClientFeed(const std::string& testFile, LineNumber lastLine);

    /// Writes the next stretch, of at most so many lines, for a client to run; of none at the end
    /// of the file. Throws BadInput and BadOutput.
    void WriteNext(const ClientFolder& folder, std::size_t lines);

    /// The lines of the stretch.
    const std::vector<TestLine>& Lines() const { return m_lines; }
    const TestLine& Line(LineNumber number) const { return m_lines.at(number - m_lines[0].number); }

    /// The next row that the client has written to its end.
    std::optional<std::string> TakeRow() { return m_rows->TakeRow(); }
    /// The header of the client's result; empty where it has none yet.
    std::string ResultHeader() { return m_rows ? m_rows->Header() : ""; }

    /// That of the test file.
    const std::string& Header() const { return m_source.Header(); }

private:
    TestLines m_source;
    std::vector<TestLine> m_lines;
    std::optional<RowReader> m_rows;
};

} // namespace Bench
