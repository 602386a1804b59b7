#include "Tools/SarvexTool/Bench/Files/SplitDirectory.h"

#include "Modules/xFramework/OSAL/DurableFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Sha256.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

namespace Bench {

namespace {

namespace fs = std::filesystem;
using OSAL::DurableFile;

/// Is there while a plan is being split, and after a crash.
constexpr const char* lockName = "split.lock";
constexpr const char* unfinishedManifestName = "manifest.json.part";

bool Exists(const std::string& name) {
    return fs::exists(fs::symlink_status(PathOf(name)));
}

/// Whether the folder was not there before.
bool MakeFolder(const std::string& directory) {
    std::error_code error;
    const bool isNew = fs::create_directories(PathOf(directory), error);
    if (error || !fs::is_directory(PathOf(directory)))
        throw BadOutput(directory, "cannot be made a folder" +
                                       (error ? " (" + error.message() + ")" : std::string()));
    return isNew;
}

bool IsOfSplit(const std::string& file) {
    return file == ManifestName || file == PlanCopyName || file == unfinishedManifestName ||
           IsChunkName(file);
}

/// Those of a split plan among a folder's files.
std::vector<std::string> FilesOfSplit(const std::string& directory) {
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(PathOf(directory))) {
        std::string file = NameOf(entry.path().filename());
        if (IsOfSplit(file))
            files.push_back(std::move(file));
    }
    return files;
}

} // namespace

SplitDirectory::SplitDirectory(std::string directory, const LockHolder& holder)
    : m_directory(std::move(directory)), m_isNewFolder(MakeFolder(m_directory)) {
    const std::string lock = PathTo(lockName);
    const bool wasCutOff = Exists(lock);
    if (!wasCutOff)
        RequireUnused();
    m_lock = TakeLock(lock, m_directory, "the folder", holder);
    // Whoever had it may have come to the end in between.
    if (wasCutOff && !Exists(PathTo(ManifestName)))
        RemoveFiles();
    try {
        RequireUnused();
    } catch (const BadOutput&) {
        m_lock.reset();
        std::error_code ignored;
        fs::remove(PathOf(lock), ignored);
        throw;
    }
}

SplitDirectory::~SplitDirectory() {
    std::error_code ignored;
    if (!m_isFinished)
        RemoveFiles();
    // On a system that removes no open file, the lock must go first.
    m_lock.reset();
    fs::remove(PathOf(PathTo(lockName)), ignored);
    if (!m_isFinished && m_isNewFolder)
        fs::remove(PathOf(m_directory), ignored);
}

std::string SplitDirectory::Write(const std::string& file, std::string_view bytes) {
    if (OSAL::HeldInterruption::IsWanted())
        throw BadOutput(m_directory, "is not written to its end: the program is to end");
    DurableFile(PathTo(file), DurableFile::Opening::New).Append(bytes);
    m_written.push_back(file);
    Sha256 hash;
    hash.Add(bytes);
    return hash.Finish();
}

void SplitDirectory::Finish(const Manifest& manifest) {
    Write(unfinishedManifestName, ToJsonText(manifest));
    // The manifest comes last, for the disk too. A disk takes all files at the end in a tenth of
    // the time that it takes them one by one.
    for (const std::string& file : m_written)
        DurableFile(PathTo(file), DurableFile::Opening::Existing).Sync();
    OSAL::SyncDirectory(m_directory);
    fs::rename(PathOf(PathTo(unfinishedManifestName)), PathOf(PathTo(ManifestName)));
    m_isFinished = true;
    OSAL::SyncDirectory(m_directory);
    OSAL::SyncDirectory(NameOf(fs::absolute(PathOf(m_directory)).parent_path()));
}

std::string SplitDirectory::PathTo(const std::string& file) const {
    return NameOf(PathOf(m_directory) / file);
}

void SplitDirectory::RequireUnused() const {
    const std::vector<std::string> files = FilesOfSplit(m_directory);
    if (!files.empty())
        throw BadOutput(m_directory, "holds a plan in chunks already, or a part of one (" +
                                         *std::min_element(files.begin(), files.end()) +
                                         "), which is never overwritten; name another folder");
}

void SplitDirectory::RemoveFiles() const {
    try {
        for (const std::string& file : FilesOfSplit(m_directory))
            fs::remove(PathOf(PathTo(file)));
    } catch (const std::system_error&) {
        // Whoever looks for a manifest finds none, and the next one who takes the folder is told.
    }
}

} // namespace Bench
