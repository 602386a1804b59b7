#pragma once

#include "Modules/xFramework/OSAL/FileLock.h"
#include "Modules/xFramework/OSAL/Interruption.h"
#include "Tools/SarvexTool/Bench/Files/Locks.h"
#include "Tools/SarvexTool/Bench/Files/RunFiles.h"

#include <optional>
#include <string>

namespace Bench {

/// A run directory that is made beside its place and takes it when it is whole: whatever becomes of
/// the program or the system, the place holds a whole one or none. What a killed program has left
/// is taken away by the next one with the same place. A request to end the program waits until what
/// is not whole is taken back; see IsInterrupted.
class PendingFolder {
public:
    /// Throws BadOutput when there is something in the place but an empty folder, or the folder
    /// beside it, "PLACE.part", cannot be made; InUse when another program makes one for the same
    /// place.
    PendingFolder(std::string place, const LockHolder& holder);
    /// Takes back what was not committed.
    ~PendingFolder();
    PendingFolder(const PendingFolder&) = delete;
    PendingFolder& operator=(const PendingFolder&) = delete;

    /// Where the files are to be made.
    const RunFiles& Files() const { return m_files; }

    /// Whether the program is to end.
    static bool IsInterrupted() { return OSAL::HeldInterruption::IsWanted(); }

    /// Waits until the disk has all files, which must be closed, and gives them their place. To be
    /// called once. Throws BadOutput or std::system_error.
    void Commit();

private:
    void RequireFree() const;
    void RemoveFiles() const;
    void GiveBack();

    OSAL::HeldInterruption m_held;
    std::string m_place;
    std::string m_beside;
    RunFiles m_files;
    std::optional<OSAL::FileLock> m_lock;
};

} // namespace Bench
