#pragma once

#include "Modules/xFramework/OSAL/DurableFile.h"
#include "Tools/SarvexTool/Bench/Core/Outcomes.h"
#include "Tools/SarvexTool/Bench/Files/AppendedLines.h"

#include <cstdint>
#include <istream>
#include <string>
#include <vector>

namespace Bench {

/// A finished line of a run, as its journal tells it.
struct JournalEntry {
    LineNumber line = 0;
    LineOutcome outcome = {};
    /// How many bytes result.csv has with the line's row.
    std::uint64_t csvEnd = 0;
    /// When the line's configuration was first sent, as UtcTime writes it.
    std::string started = {};
    /// From then until its row was whole.
    double seconds = 0;
    /// Whether all effective settings of the line were sent with it, and not only its own.
    bool isExplicit = false;

    bool operator==(const JournalEntry&) const = default;
};

/// The entry as a line of the journal, with its end.
std::string LineOf(const JournalEntry& entry);

/// Writes the journal of a run: each finished line, in the order of the lines.
class Journal {
public:
    /// Goes on at the end of the file, which must hold whole entries only.
    explicit Journal(OSAL::DurableFile file) : m_file(std::move(file)) {}

    /// Returns when the entry is on the disk. Throws std::system_error; nothing of the entry is
    /// then in the file, as far as the system lets it be taken back.
    void Append(const JournalEntry& entry);

private:
    OSAL::DurableFile m_file;
};

/// Reads a journal entry by entry, in constant memory.
class JournalReader {
public:
    /// The stream is read in binary and outlives the reader; the name is for the problems only.
    JournalReader(std::istream& stream, std::string name);

    /// False at the end, and at a last line that is torn. Throws BadInput for any other line that
    /// is no entry, or not that of the test file's next line.
    bool Read(JournalEntry& entry);

    /// How many bytes the entries have that were read.
    std::uint64_t End() const { return m_lines.End(); }

private:
    AppendedLines m_lines;
    JournalEntry m_last;
};

/// All entries of a journal. Throws BadInput.
std::vector<JournalEntry> ReadJournal(const std::string& name);

} // namespace Bench
