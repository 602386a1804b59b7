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

} // namespace OSAL
