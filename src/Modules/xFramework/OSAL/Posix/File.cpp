#include "Modules/xFramework/OSAL/File.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <utility>

namespace OSAL {

PathKind LookAtPath(const std::string& path) {
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0)
        return {};
    const bool isDirectory = S_ISDIR(status.st_mode);
    return {.isDirectory = isDirectory,
            .isSymbolicLink = S_ISLNK(status.st_mode),
            .isToBeArchived = !isDirectory};
}

std::uint32_t CountNames(const std::string& path) {
    struct stat status;
    return ::stat(path.c_str(), &status) == 0 ? static_cast<std::uint32_t>(status.st_nlink) : 0;
}

OwnedHandle OpenFileForReading(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    return descriptor < 0 ? OwnedHandle() : OwnedHandle(static_cast<Handle>(descriptor));
}

std::size_t ReadFile(const OwnedHandle& file, char* buffer, std::size_t size) {
    const ssize_t count = ::read(static_cast<int>(file.Get()), buffer, size);
    return count < 0 ? 0 : static_cast<std::size_t>(count);
}

std::string ReadTextFile(const std::string& path) {
    // Opening a pipe would wait for its other end.
    struct stat status;
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    std::ifstream file(path);
    std::ostringstream text;
    // This way a read that fails ends the text; an iterator would let the buffer's exception pass.
    text << file.rdbuf();
    return std::move(text).str();
}

bool CloseHandle(Handle handle) {
    return handle != InvalidHandle && ::close(static_cast<int>(handle)) == 0;
}

} // namespace OSAL
