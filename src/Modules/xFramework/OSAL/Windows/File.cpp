#include "Modules/xFramework/OSAL/File.h"

#include "Modules/xFramework/OSAL/Windows/FileAttributes.h"
#include "Modules/xFramework/OSAL/Windows/WideText.h"

#include <windows.h>

#include <fstream>
#include <sstream>
#include <utility>

namespace OSAL {

namespace {

HANDLE ToSystem(Handle handle) {
    return reinterpret_cast<HANDLE>(handle);
}

/// The reparse tag of the path itself; 0 when it has none or cannot be looked at.
DWORD ReadReparseTag(const std::wstring& path) {
    WIN32_FIND_DATAW found{};
    const HANDLE search = ::FindFirstFileW(path.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return 0;
    ::FindClose(search);
    // For a reparse point the system puts its tag into the first reserved field.
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 ? found.dwReserved0 : 0;
}

HANDLE OpenExisting(const std::string& path, DWORD access) {
    return ::CreateFileA(path.c_str(), access, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
}

} // namespace

PathKind LookAtPath(const std::string& path) {
    const std::wstring widePath = Widen(path);
    const DWORD attributes = ::GetFileAttributesW(widePath.c_str());
    const bool isReparsePoint = (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    return KindOf(attributes, isReparsePoint ? ReadReparseTag(widePath) : 0);
}

std::uint32_t CountNames(const std::string& path) {
    const HANDLE file = OpenExisting(path, 0);
    if (file == INVALID_HANDLE_VALUE)
        return 0;
    FILE_STANDARD_INFO information{};
    const BOOL known =
        ::GetFileInformationByHandleEx(file, FileStandardInfo, &information, sizeof information);
    ::CloseHandle(file);
    return known ? information.NumberOfLinks : 0;
}

OwnedHandle OpenFileForReading(const std::string& path) {
    return OwnedHandle(reinterpret_cast<Handle>(OpenExisting(path, GENERIC_READ)));
}

std::size_t ReadFile(const OwnedHandle& file, char* buffer, std::size_t size) {
    DWORD count = 0;
    const BOOL done =
        ::ReadFile(ToSystem(file.Get()), buffer, static_cast<DWORD>(size), &count, nullptr);
    return done ? count : 0;
}

std::string ReadTextFile(const std::string& path) {
    std::ifstream file(path);
    std::ostringstream text;
    // This way a read that fails ends the text; an iterator would let the buffer's exception pass.
    text << file.rdbuf();
    return std::move(text).str();
}

bool CloseHandle(Handle handle) {
    return ::CloseHandle(ToSystem(handle)) != FALSE;
}

} // namespace OSAL
