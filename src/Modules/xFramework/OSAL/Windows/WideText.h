#pragma once

#include <windows.h>

#include <string>

namespace OSAL {

/// Text of the system code page as wide text.
inline std::wstring Widen(const std::string& text) {
    const int size = static_cast<int>(text.size());
    const int wideSize = ::MultiByteToWideChar(CP_ACP, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(wideSize), L'\0');
    ::MultiByteToWideChar(CP_ACP, 0, text.data(), size, wide.data(), wideSize);
    return wide;
}

inline std::string ToUtf8(const std::wstring& wide) {
    const int wideSize = static_cast<int>(wide.size());
    const int size =
        ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), wideSize, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(size), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), wideSize, text.data(), size, nullptr, nullptr);
    return text;
}

inline std::wstring FromUtf8(const std::string& text) {
    const int size = static_cast<int>(text.size());
    const int wideSize = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(wideSize), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), wideSize);
    return wide;
}

} // namespace OSAL
