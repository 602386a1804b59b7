#include "Modules/xFramework/OSAL/DurableFile.h"

#include "Modules/xFramework/OSAL/Windows/WideText.h"

#include <windows.h>

#include <algorithm>
#include <system_error>

namespace OSAL {

namespace {

HANDLE ToSystem(Handle handle) {
    return reinterpret_cast<HANDLE>(handle);
}

/// Takes the texts as they are: to join them before the call could change the last error.
[[noreturn]] void Throw(DWORD error, const char* what, const std::string& path) {
    throw std::system_error(static_cast<int>(error), std::system_category(),
                            std::string(what) + " " + path);
}

DWORD DispositionOf(DurableFile::Opening opening) {
    switch (opening) {
    case DurableFile::Opening::New:
        return CREATE_NEW;
    case DurableFile::Opening::Existing:
        return OPEN_EXISTING;
    default:
        return OPEN_ALWAYS;
    }
}

/// ERROR_SUCCESS, or the system's error.
DWORD WriteAll(HANDLE file, std::string_view bytes) {
    constexpr std::size_t largestPiece = 1 << 30;
    while (!bytes.empty()) {
        DWORD count = 0;
        const auto size = static_cast<DWORD>(std::min(bytes.size(), largestPiece));
        if (!::WriteFile(file, bytes.data(), size, &count, nullptr))
            return ::GetLastError();
        bytes.remove_prefix(count);
    }
    return ERROR_SUCCESS;
}

bool SetSize(HANDLE file, std::uint64_t size) {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    return ::SetFileInformationByHandle(file, FileEndOfFileInfo, &end, sizeof end) != FALSE;
}

} // namespace

DurableFile::DurableFile(std::string path, Opening opening) : m_path(std::move(path)) {
    const HANDLE file =
        ::CreateFileW(FromUtf8(m_path).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
                      nullptr, DispositionOf(opening), FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        Fail("cannot open");
    m_handle = reinterpret_cast<Handle>(file);
}

DurableFile::~DurableFile() {
    if (m_handle != InvalidHandle)
        ::CloseHandle(ToSystem(m_handle));
}

void DurableFile::Append(std::string_view bytes) {
    const std::uint64_t size = Size();
    LARGE_INTEGER end{};
    end.QuadPart = static_cast<LONGLONG>(size);
    if (!::SetFilePointerEx(ToSystem(m_handle), end, nullptr, FILE_BEGIN))
        Fail("cannot write");
    const DWORD error = WriteAll(ToSystem(m_handle), bytes);
    if (error == ERROR_SUCCESS)
        return;
    // What cannot be taken back stays, and the first error is the one that counts.
    SetSize(ToSystem(m_handle), size);
    Throw(error, "cannot write", m_path);
}

void DurableFile::Sync() {
    if (!::FlushFileBuffers(ToSystem(m_handle)))
        Fail("cannot bring to the disk");
}

void DurableFile::Truncate(std::uint64_t size) {
    if (!SetSize(ToSystem(m_handle), size))
        Fail("cannot shorten");
}

std::uint64_t DurableFile::Size() const {
    LARGE_INTEGER size{};
    if (!::GetFileSizeEx(ToSystem(m_handle), &size))
        Fail("cannot look at");
    return static_cast<std::uint64_t>(size.QuadPart);
}

void DurableFile::Fail(const char* what) const {
    Throw(::GetLastError(), what, m_path);
}

void SyncDirectory(const std::string& /*path*/) {
    // The file system keeps a journal of its names.
}

} // namespace OSAL
