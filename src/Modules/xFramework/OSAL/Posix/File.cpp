#include "Modules/xFramework/OSAL/File.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

namespace OSAL {

std::uint32_t ReadFileAttributes(const std::string& path) {
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0)
        return InvalidFileAttributes;
    std::uint32_t attributes = 0;
    if (!S_ISDIR(status.st_mode))
        attributes |= ArchiveAttribute;
    if (S_ISLNK(status.st_mode))
        attributes |= ReparsePointAttribute;
    return attributes;
}

std::uint32_t ReadReparseTag(const std::string& path) {
    struct stat status;
    const bool isLink = ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
    return isLink ? SymbolicLinkTag : 0;
}

std::uint32_t CountHardLinks(const std::string& path) {
    struct stat status;
    return ::stat(path.c_str(), &status) == 0 ? static_cast<std::uint32_t>(status.st_nlink) : 0;
}

Handle OpenFileForReading(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    return descriptor < 0 ? InvalidHandle : static_cast<Handle>(descriptor);
}

std::size_t ReadFile(Handle file, char* buffer, std::size_t size) {
    const ssize_t count = ::read(static_cast<int>(file), buffer, size);
    return count < 0 ? 0 : static_cast<std::size_t>(count);
}

std::string ReadTextFile(const std::string& path) {
    // Opening a pipe would wait for its other end.
    struct stat status;
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool CloseHandle(Handle handle) {
    return handle != InvalidHandle && ::close(static_cast<int>(handle)) == 0;
}

} // namespace OSAL
