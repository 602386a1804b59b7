#include "Tools/Vemo/VemoSimulator/PortFile.h"

#include "Modules/xFramework/OSAL/File.h"
#include "Modules/xFramework/OSAL/Process.h"
#include "Tools/Vemo/VemoSimulator/Text.h"

#include <array>
#include <stdexcept>

namespace VemoSimulator {

namespace {

std::string PortFilePath() {
    std::string path;
    OSAL::ReadModulePath(path);
    // Without a separator rfind gives npos, and npos + 1 is 0.
    return path.substr(0, path.rfind(OSAL::PathSeparator) + 1) + "Socket.cfg";
}

std::string ReadPortText(const std::string& path) {
    constexpr std::size_t bytesRead = 5;
    std::array<char, bytesRead> buffer{};
    const OSAL::OwnedHandle file = OSAL::OpenFileForReading(path);
    OSAL::ReadFile(file, buffer.data(), buffer.size());
    buffer.back() = '\0';
    return buffer.data();
}

} // namespace

std::uint16_t ReadPortFile() {
    const std::string path = PortFilePath();
    const auto port = ParseDecimal(ReadPortText(path));
    if (!port || *port == 0)
        throw std::runtime_error("the first four bytes of " + path +
                                 " hold no port; give one with --port");
    return static_cast<std::uint16_t>(*port);
}

} // namespace VemoSimulator
