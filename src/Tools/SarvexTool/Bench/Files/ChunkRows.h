#pragma once

#include "Tools/SarvexTool/Bench/Files/Journal.h"
#include "Tools/SarvexTool/Bench/Files/RunFiles.h"
#include "Tools/SarvexTool/Bench/Files/TestLines.h"

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

namespace Bench {

/// What a run has of a line of its test file.
struct ChunkRow {
    /// The settings that the line writes.
    OwnSettings own;
    JournalEntry entry;
    /// What the row has after the line: ",12.5,NA".
    std::string powers;
};

/// Reads the rows of a run together with its journal and its test file, and makes sure that they
/// belong together. The run may have been on another system, whose lines have another end, and may
/// still go on. Memory does not grow with the run.
class ChunkRows {
public:
    /// The test file is the chunk that the run was of. Throws BadInput when a file cannot be read.
    ChunkRows(const std::string& runFolder, const std::string& chunkFile);
    ChunkRows(const ChunkRows&) = delete;
    ChunkRows& operator=(const ChunkRows&) = delete;

    /// Reads the row of the next line. Throws BadInput with the file and its line when it is not
    /// there, or is not that of the line and of the journal.
    void Read(ChunkRow& row);

private:
    void ReadHeader();
    /// Reads a line of result.csv without its line feed.
    void ReadLine();
    /// Takes the end of another system off the line.
    std::string_view WithoutEnd() const;
    [[noreturn]] void Fail(LineNumber line, const std::string& what) const;

    RunFiles m_files;
    TestLines m_lines;
    std::ifstream m_journalFile;
    JournalReader m_journal;
    std::ifstream m_rows;
    /// How many bytes of result.csv were read.
    std::uint64_t m_end = 0;
    TestLine m_line;
    std::string m_row;
};

} // namespace Bench
