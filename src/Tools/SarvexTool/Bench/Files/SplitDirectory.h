#pragma once

#include "Modules/xFramework/OSAL/FileLock.h"
#include "Modules/xFramework/OSAL/Interruption.h"
#include "Tools/SarvexTool/Bench/Files/Locks.h"
#include "Tools/SarvexTool/Bench/Files/Manifest.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

/// The folder that a plan's chunks are written to, locked as long as the object lives. All its
/// files are whole and on the disk, or it has no manifest: what a crash has left of a plan that was
/// being split is removed when the folder is taken again. A request to end the program waits until
/// what is not whole is taken back. What fails throws std::system_error, or BadFile where it says
/// so.
class SplitDirectory {
public:
    /// Makes the folder, or takes one that holds neither a manifest nor chunks nor the copy of a
    /// plan; else throws BadOutput. InUse when a plan is being split there.
    SplitDirectory(std::string directory, const LockHolder& holder);
    /// Takes back what was not finished.
    ~SplitDirectory();
    SplitDirectory(const SplitDirectory&) = delete;
    SplitDirectory& operator=(const SplitDirectory&) = delete;

    /// Writes a chunk or the copy of the plan. Returns its SHA-256 in 64 hexadecimal digits.
    std::string Write(const std::string& file, std::string_view bytes);

    /// Writes the manifest, after all other files.
    void Finish(const Manifest& manifest);

private:
    std::string PathTo(const std::string& file) const;
    void RequireUnused() const;
    void RemoveFiles() const;

    /// Goes last: with it, the program may.
    OSAL::HeldInterruption m_held;
    std::string m_directory;
    bool m_isNewFolder = false;
    std::vector<std::string> m_written;
    bool m_isFinished = false;
    std::optional<OSAL::FileLock> m_lock;
};

} // namespace Bench
