#include "Modules/xFramework/Utilities/FileText.h"

#include "Modules/xFramework/OSAL/File.h"

#include <array>

namespace Utilities {

namespace {

class OpenFile {
public:
    explicit OpenFile(const std::string& path) : m_handle(OSAL::OpenFileForReading(path)) {}
    ~OpenFile() { OSAL::CloseHandle(m_handle); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    std::size_t Read(char* buffer, std::size_t size) {
        return OSAL::ReadFile(m_handle, buffer, size);
    }

private:
    OSAL::Handle m_handle;
};

} // namespace

std::string ReadFileText(const std::string& path) {
    std::array<char, 4096> piece;
    std::string text;
    OpenFile file(path);
    while (const std::size_t count = file.Read(piece.data(), piece.size()))
        text.append(piece.data(), count);
    return text;
}

} // namespace Utilities
