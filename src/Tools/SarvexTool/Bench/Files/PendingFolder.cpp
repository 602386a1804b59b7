#include "Tools/SarvexTool/Bench/Files/PendingFolder.h"

#include "Modules/xFramework/OSAL/DurableFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace Bench {

namespace {

namespace fs = std::filesystem;

/// All that a run directory may hold, and what is made beside two of the files.
std::vector<std::string> NamesIn(const RunFiles& files) {
    return {files.testFile,        files.result,    files.tree,
            files.tree + ".part",  files.facts,     files.journal,
            files.facts + ".part", files.exchanges, files.console};
}

std::string WithoutSlash(std::string name) {
    while (name.size() > 1 &&
           (name.ends_with('/') || name.ends_with(fs::path::preferred_separator)))
        name.pop_back();
    return name;
}

} // namespace

PendingFolder::PendingFolder(std::string place, const LockHolder& holder)
    : m_place(WithoutSlash(std::move(place))),
      m_beside(m_place + ".part"),
      m_files(m_beside + "/run") {
    RequireFree();
    std::error_code error;
    fs::create_directories(PathOf(m_beside), error);
    if (error)
        throw BadOutput(m_beside, "cannot be made (" + error.message() + ")");
    m_lock = TakeLock(m_beside + "/run.lock", m_place, "the folder", holder);
    try {
        // Another program may have finished in between.
        RequireFree();
        RemoveFiles();
        fs::remove(PathOf(m_files.directory), error);
        if (error || !fs::create_directory(PathOf(m_files.directory), error))
            throw BadOutput(m_files.directory, "cannot be made; look what is there, and remove it");
    } catch (...) {
        GiveBack();
        throw;
    }
}

PendingFolder::~PendingFolder() {
    RemoveFiles();
    std::error_code ignored;
    fs::remove(PathOf(m_files.directory), ignored);
    GiveBack();
}

void PendingFolder::Commit() {
    for (const std::string& name : NamesIn(m_files)) {
        if (fs::exists(PathOf(name)))
            OSAL::DurableFile(name, OSAL::DurableFile::Opening::Existing).Sync();
    }
    OSAL::SyncDirectory(m_files.directory);
    RequireFree();
    std::error_code error;
    // Some systems rename nothing to a folder that is there, empty or not.
    fs::remove(PathOf(m_place), error);
    fs::rename(PathOf(m_files.directory), PathOf(m_place), error);
    if (error)
        throw BadOutput(m_place, "cannot be put in its place (" + error.message() + ")");
    OSAL::SyncDirectory(NameOf(fs::absolute(PathOf(m_place)).parent_path()));
}

void PendingFolder::RequireFree() const {
    const fs::path place = PathOf(m_place);
    std::error_code error;
    const fs::file_status status = fs::symlink_status(place, error);
    if (!fs::exists(status))
        return;
    if (!fs::is_directory(status) || !fs::is_empty(place, error) || error)
        throw BadOutput(m_place, "is there already and is no empty folder, and old results are "
                                 "never overwritten; name another folder");
}

void PendingFolder::RemoveFiles() const {
    std::error_code ignored;
    for (const std::string& name : NamesIn(m_files))
        fs::remove(PathOf(name), ignored);
}

void PendingFolder::GiveBack() {
    std::error_code error;
    const fs::path lock = PathOf(m_beside + "/run.lock");
    // Before somebody else can take it, where the system removes open files.
    fs::remove(lock, error);
    m_lock.reset();
    if (error)
        fs::remove(lock, error);
    fs::remove(PathOf(m_beside), error);
}

} // namespace Bench
