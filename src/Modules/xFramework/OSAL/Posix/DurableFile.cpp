#include "Modules/xFramework/OSAL/DurableFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace OSAL {

namespace {

constexpr mode_t readableByAll = 0666;

int ToSystem(Handle handle) {
    return static_cast<int>(handle);
}

/// Takes the texts as they are: to join them before the call could change the last error.
[[noreturn]] void Throw(int error, const char* what, const std::string& path) {
    throw std::system_error(error, std::generic_category(), std::string(what) + " " + path);
}

int FlagsOf(DurableFile::Opening opening) {
    switch (opening) {
    case DurableFile::Opening::New:
        return O_CREAT | O_EXCL;
    case DurableFile::Opening::Existing:
        return 0;
    default:
        return O_CREAT;
    }
}

/// 0, or the system's error.
int WriteAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR)
            return errno;
        bytes.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
    return 0;
}

/// Lets a write beyond the limit of a file's size fail, where its signal would end the process. A
/// handler does that, for children begin without it.
void SurviveSizeLimit() {
    struct sigaction action {};
    if (::sigaction(SIGXFSZ, nullptr, &action) != 0 || action.sa_handler != SIG_DFL)
        return;
    action.sa_handler = [](int) {};
    ::sigaction(SIGXFSZ, &action, nullptr);
}

} // namespace

DurableFile::DurableFile(std::string path, Opening opening) : m_path(std::move(path)) {
    SurviveSizeLimit();
    const int flags = O_RDWR | O_APPEND | O_CLOEXEC | O_NOCTTY | FlagsOf(opening);
    const int descriptor = ::open(m_path.c_str(), flags, readableByAll);
    if (descriptor < 0)
        Fail("cannot open");
    m_handle = static_cast<Handle>(descriptor);
}

DurableFile::~DurableFile() {
    if (m_handle != InvalidHandle)
        ::close(ToSystem(m_handle));
}

void DurableFile::Append(std::string_view bytes) {
    const std::uint64_t size = Size();
    const int error = WriteAll(ToSystem(m_handle), bytes);
    if (error == 0)
        return;
    // What cannot be taken back stays, and the first error is the one that counts.
    [[maybe_unused]] const int ignored = ::ftruncate(ToSystem(m_handle), static_cast<off_t>(size));
    Throw(error, "cannot write", m_path);
}

void DurableFile::Sync() {
    if (::fsync(ToSystem(m_handle)) != 0)
        Fail("cannot bring to the disk");
}

void DurableFile::Truncate(std::uint64_t size) {
    if (::ftruncate(ToSystem(m_handle), static_cast<off_t>(size)) != 0)
        Fail("cannot shorten");
}

std::uint64_t DurableFile::Size() const {
    struct stat status;
    if (::fstat(ToSystem(m_handle), &status) != 0)
        Fail("cannot look at");
    return static_cast<std::uint64_t>(status.st_size);
}

void DurableFile::Fail(const char* what) const {
    Throw(errno, what, m_path);
}

void SyncDirectory(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        Throw(errno, "cannot open", path);
    const int error = ::fsync(descriptor) == 0 ? 0 : errno;
    ::close(descriptor);
    // Some file systems sync no directory; their names are durable in their own way.
    if (error != 0 && error != EINVAL)
        Throw(error, "cannot bring to the disk", path);
}

} // namespace OSAL
