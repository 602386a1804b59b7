#include "Modules/xFramework/OSAL/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace OSAL {

namespace {

constexpr mode_t readableByAll = 0644;
constexpr mode_t ownersAlone = 0700;
constexpr mode_t allOthers = 0077;

/// Takes the texts as they are: to join them before the call could change the last error.
[[noreturn]] void Throw(int error, const char* what, const std::string& path) {
    throw std::system_error(error, std::generic_category(), std::string(what) + " " + path);
}

bool WriteWhole(int descriptor, std::string_view text) {
    return ::ftruncate(descriptor, 0) == 0 &&
           ::pwrite(descriptor, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size());
}

} // namespace

std::optional<FileLock> FileLock::TryLock(const std::string& path, std::string_view holder) {
    const int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    const int descriptor = ::open(path.c_str(), flags, readableByAll);
    if (descriptor < 0)
        Throw(errno, "cannot open", path);
    FileLock lock(static_cast<Handle>(descriptor));
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK)
            return std::nullopt;
        Throw(errno, "cannot lock", path);
    }
    errno = ENOSPC; // For a write that takes a part only.
    if (!WriteWhole(descriptor, holder))
        Throw(errno, "cannot write", path);
    return lock;
}

FileLock::~FileLock() {
    if (m_handle != InvalidHandle)
        ::close(static_cast<int>(m_handle));
}

std::string MakeUserFolder(const std::string& name) {
    std::string path = "/tmp/" + name + "-" + std::to_string(::geteuid());
    if (::mkdir(path.c_str(), ownersAlone) != 0 && errno != EEXIST)
        Throw(errno, "cannot make", path);
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0)
        Throw(errno, "cannot look at", path);
    if (!S_ISDIR(status.st_mode))
        Throw(ENOTDIR, "cannot use", path);
    if (status.st_uid != ::geteuid() || (status.st_mode & allOthers) != 0)
        Throw(EACCES, "cannot keep from others", path);
    return path;
}

} // namespace OSAL
