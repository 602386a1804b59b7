#include "Modules/xFramework/OSAL/File.h"

#include "Modules/xFramework/OSAL/Windows/WideText.h"

#include <windows.h>

#include <fstream>
#include <iterator>

namespace OSAL {

namespace {

HANDLE ToSystem(Handle handle) {
    return reinterpret_cast<HANDLE>(handle);
}

HANDLE OpenExisting(const std::string& path, DWORD access) {
    return ::CreateFileA(path.c_str(), access, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
}

} // namespace

std::uint32_t ReadFileAttributes(const std::string& path) {
    return ::GetFileAttributesW(Widen(path).c_str());
}

std::uint32_t ReadReparseTag(const std::string& path) {
    WIN32_FIND_DATAW found{};
    const HANDLE search = ::FindFirstFileW(Widen(path).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return 0;
    ::FindClose(search);
    // For a reparse point the system puts its tag into the first reserved field.
    return (found.dwFileAttributes & ReparsePointAttribute) != 0 ? found.dwReserved0 : 0;
}

std::uint32_t CountHardLinks(const std::string& path) {
    const HANDLE file = OpenExisting(path, 0);
    if (file == INVALID_HANDLE_VALUE)
        return 0;
    FILE_STANDARD_INFO information{};
    const BOOL known =
        ::GetFileInformationByHandleEx(file, FileStandardInfo, &information, sizeof information);
    ::CloseHandle(file);
    return known ? information.NumberOfLinks : 0;
}

Handle OpenFileForReading(const std::string& path) {
    return reinterpret_cast<Handle>(OpenExisting(path, GENERIC_READ));
}

std::size_t ReadFile(Handle file, char* buffer, std::size_t size) {
    DWORD count = 0;
    const BOOL done = ::ReadFile(ToSystem(file), buffer, static_cast<DWORD>(size), &count, nullptr);
    return done ? count : 0;
}

std::string ReadTextFile(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool CloseHandle(Handle handle) {
    return ::CloseHandle(ToSystem(handle)) != FALSE;
}

} // namespace OSAL
