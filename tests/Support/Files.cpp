#include "tests/Support/Files.h"

#include <array>
#include <fstream>
#include <random>

namespace TestSupport {

TemporaryDirectory::TemporaryDirectory() {
    std::random_device random;
    do {
        m_path = std::filesystem::temp_directory_path() /
                 ("sarvex-" + std::to_string(random()) + std::to_string(random()));
    } while (!std::filesystem::create_directory(m_path));
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string TemporaryDirectory::Create(const std::string& name, const std::string& content) const {
    WriteBytes(Path(name), content);
    return Path(name);
}

std::string ReadBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string bytes;
    std::array<char, 65536> block;
    while (file.read(block.data(), block.size()), file.gcount() > 0)
        bytes.append(block.data(), static_cast<std::size_t>(file.gcount()));
    return bytes;
}

void WriteBytes(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

} // namespace TestSupport
