#pragma once

#include <string>

namespace OSAL {

/// Text of the system code page as wide text.
std::wstring Widen(const std::string& text);

} // namespace OSAL
