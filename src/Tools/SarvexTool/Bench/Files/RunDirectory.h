#pragma once

#include "Modules/xFramework/OSAL/DurableFile.h"
#include "Modules/xFramework/OSAL/FileLock.h"
#include "Tools/SarvexTool/Bench/Core/Outcomes.h"
#include "Tools/SarvexTool/Bench/Files/Journal.h"
#include "Tools/SarvexTool/Bench/Files/Locks.h"
#include "Tools/SarvexTool/Bench/Files/RunFacts.h"
#include "Tools/SarvexTool/Bench/Files/RunFiles.h"

#include <optional>
#include <string>
#include <string_view>

namespace Bench {

/// The folder of a run that goes on, locked as long as the object lives. What was kept is on the
/// disk, whatever becomes of the program or the system. What fails throws std::system_error, or
/// BadFile where it says so; the folder can then be resumed, as after a crash.
class RunDirectory {
public:
    /// Makes the folder of a new run, or fills one that holds neither a run nor results, or only
    /// what a run of the same test file has left that was killed before it began; else throws
    /// BadOutput. The facts are written with the test file's name and SHA-256. Where it
    /// fails, nothing of the run is left.
    static RunDirectory Create(const std::string& directory, const std::string& testFile,
                               RunFacts facts, const LockHolder& holder);

    /// Opens the folder of a run that has ended early, and cuts off what is not journalled. Throws
    /// BadInput where there is no run, where its test file is not the same any more, and for files
    /// that a crash does not leave so; InUse when the run goes on. A lock that the caller has is
    /// that of Lock.
    static RunDirectory Resume(const std::string& directory, const LockHolder& holder,
                               std::optional<OSAL::FileLock> lock = std::nullopt);

    /// The lock of the folder of a run. Throws InUse when the run goes on.
    static OSAL::FileLock Lock(const std::string& directory, const LockHolder& holder);

    const RunFiles& Files() const { return m_files; }

    RunFacts& Facts() { return m_facts; }
    /// Writes the facts as they are now.
    void SaveFacts() { WriteRunFacts(m_files.facts, m_facts); }

    /// The line that was finished last; 0 before the first.
    LineNumber LastLine() const { return m_lastLine; }

    /// Whether result.csv is empty, so that a header is to be kept first if there is one.
    bool IsResultEmpty() const { return m_result.Size() == 0; }

    /// Keeps the header of result.csv, with its line end.
    void KeepHeader(std::string_view header);

    /// Keeps the line after LastLine. started is as UtcTime writes it.
    void KeepLine(const FinishedLine& line, const std::string& started, double seconds);

    /// Adds the row of a line that is not finished; it goes when the run is resumed.
    void KeepUnfinishedRow(std::string_view row);

private:
    RunDirectory(RunFiles files, OSAL::FileLock lock, RunFacts facts, OSAL::DurableFile result,
                 OSAL::DurableFile journal, LineNumber lastLine);

    RunFiles m_files;
    OSAL::FileLock m_lock;
    RunFacts m_facts;
    OSAL::DurableFile m_result;
    Journal m_journal;
    LineNumber m_lastLine;
};

} // namespace Bench
