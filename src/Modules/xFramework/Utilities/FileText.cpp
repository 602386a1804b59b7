#include "Modules/xFramework/Utilities/FileText.h"

#include "Modules/xFramework/OSAL/File.h"

#include <array>

namespace Utilities {

std::string ReadFileText(const std::string& path) {
    std::array<char, 4096> piece;
    std::string text;
    const OSAL::Handle file = OSAL::OpenFileForReading(path);
    while (const std::size_t count = OSAL::ReadFile(file, piece.data(), piece.size()))
        text.append(piece.data(), count);
    OSAL::CloseHandle(file);
    return text;
}

} // namespace Utilities
