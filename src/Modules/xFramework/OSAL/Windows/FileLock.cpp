#include "Modules/xFramework/OSAL/FileLock.h"

#include "Modules/xFramework/OSAL/Windows/WideText.h"

#include <windows.h>

#include <array>
#include <system_error>

namespace OSAL {

namespace {

/// The byte that is locked: far after the text, which others could not read if it were locked.
constexpr DWORD lockedByteHigh = 0x40000000;

/// Takes the texts as they are: to join them before the call could change the last error.
[[noreturn]] void Throw(DWORD error, const char* what, const std::string& path) {
    throw std::system_error(static_cast<int>(error), std::system_category(),
                            std::string(what) + " " + path);
}

bool WriteWhole(HANDLE file, std::string_view text) {
    DWORD count = 0;
    return ::SetEndOfFile(file) &&
           ::WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &count, nullptr) &&
           count == text.size();
}

} // namespace

std::optional<FileLock> FileLock::TryLock(const std::string& path, std::string_view holder) {
    const HANDLE file = ::CreateFileW(
        FromUtf8(path).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
        nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        Throw(::GetLastError(), "cannot open", path);
    FileLock lock(reinterpret_cast<Handle>(file));
    OVERLAPPED place{};
    place.OffsetHigh = lockedByteHigh;
    if (!::LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place)) {
        const DWORD error = ::GetLastError();
        if (error == ERROR_LOCK_VIOLATION || error == ERROR_IO_PENDING)
            return std::nullopt;
        Throw(error, "cannot lock", path);
    }
    if (!WriteWhole(file, holder))
        Throw(::GetLastError(), "cannot write", path);
    return lock;
}

FileLock::~FileLock() {
    if (m_handle != InvalidHandle)
        ::CloseHandle(reinterpret_cast<HANDLE>(m_handle));
}

std::string MakeUserFolder(const std::string& name) {
    std::array<wchar_t, 32768> folder{};
    const DWORD size = ::GetEnvironmentVariableW(L"LOCALAPPDATA", folder.data(),
                                                 static_cast<DWORD>(folder.size()));
    if (size == 0 || size >= folder.size())
        Throw(ERROR_ENVVAR_NOT_FOUND, "cannot find", "%LOCALAPPDATA%");
    const std::wstring wide = std::wstring(folder.data(), size) + L"\\" + FromUtf8(name);
    std::string path = ToUtf8(wide);
    // What is below that folder is the user's own.
    if (!::CreateDirectoryW(wide.c_str(), nullptr) && ::GetLastError() != ERROR_ALREADY_EXISTS)
        Throw(::GetLastError(), "cannot make", path);
    return path;
}

} // namespace OSAL
