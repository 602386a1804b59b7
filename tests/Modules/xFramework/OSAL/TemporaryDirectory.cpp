#include "tests/Modules/xFramework/OSAL/TemporaryDirectory.h"

#include <fstream>
#include <random>
#include <system_error>

namespace OSAL {

TemporaryDirectory::TemporaryDirectory() {
    std::random_device random;
    do {
        m_path = std::filesystem::temp_directory_path() / ("OSALTests-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(m_path));
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string TemporaryDirectory::PathOf(const std::string& name) const {
    return (m_path / name).string();
}

std::string TemporaryDirectory::Create(const std::string& name, const std::string& content) const {
    const std::string path = PathOf(name);
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

} // namespace OSAL
