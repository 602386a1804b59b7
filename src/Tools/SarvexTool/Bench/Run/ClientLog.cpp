#include "Tools/SarvexTool/Bench/Run/ClientLog.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace Bench {

namespace {

std::uint64_t SizeOf(const std::string& name) {
    std::error_code isMissing;
    const std::uintmax_t size = std::filesystem::file_size(PathOf(name), isMissing);
    return isMissing ? 0 : size;
}

} // namespace

ClientLog::ClientLog(std::string name) : m_name(std::move(name)), m_start(SizeOf(m_name)) {}

std::string ClientLog::LastLine() const {
    constexpr std::uint64_t longest = 500;
    const std::uint64_t size = SizeOf(m_name);
    std::ifstream file(PathOf(m_name), std::ios::binary);
    file.seekg(static_cast<std::streamoff>(std::max(m_start, size - std::min(size, longest))));
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    text.erase(text.find_last_not_of(".\r\n") + 1);
    return text.substr(text.rfind('\n') + 1);
}

} // namespace Bench
