#pragma once

#include "Tools/SarvexTool/Bench/Files/Journal.h"
#include "Tools/SarvexTool/Bench/Files/PendingFolder.h"
#include "Tools/SarvexTool/Bench/Files/RunFacts.h"

#include <cstdint>
#include <fstream>
#include <string>

namespace Bench {

/// Writes the run directory of a plan whose lines were run elsewhere. All but result.xml is written
/// as it comes, so that the memory does not grow.
class MergedRun {
public:
    /// Begins it with a copy of the plan, byte for byte. Throws as PendingFolder does, and BadInput
    /// for the plan.
    MergedRun(const std::string& directory, const std::string& plan, const LockHolder& holder);

    /// Where it is made.
    const RunFiles& Files() const { return m_folder.Files(); }

    /// Writes the header of result.csv; none for a plan with an unknown column.
    void AddHeader(const std::string& header);

    /// Adds the row of the next line of the plan, without its end, and its entry of the journal,
    /// which gets the place of the row. Throws BadOutput when it cannot be written, and
    /// std::runtime_error when the program is to end.
    void Add(const std::string& row, JournalEntry entry);

    /// After the last row: writes the result tree, with "-" for an unknown country code. result.csv
    /// and the journal can be read afterwards. Throws BadOutput.
    void Finish(const std::string& countryCode);

    /// Gives the run its place, with these facts. Throws BadOutput or std::system_error.
    void Commit(const RunFacts& facts);

private:
    void RequireWritten() const;

    PendingFolder m_folder;
    /// How many bytes a line's end has in a file of this system.
    std::uint64_t m_lineEnd;
    std::string m_header;
    std::ofstream m_rows;
    std::ofstream m_journal;
    std::uint64_t m_csvEnd = 0;
};

} // namespace Bench
