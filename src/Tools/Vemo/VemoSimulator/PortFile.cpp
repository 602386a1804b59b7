#include "Tools/Vemo/VemoSimulator/PortFile.h"

#include "Modules/xFramework/OSAL/File.h"
#include "Modules/xFramework/OSAL/Process.h"
#include "Tools/Vemo/VemoSimulator/Text.h"

#include <array>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace VemoSimulator {

namespace {

std::string PortFilePath() {
    std::string path;
    OSAL::ReadModulePath(path);
    // Without a separator rfind gives npos, and npos + 1 is 0.
    return path.substr(0, path.rfind(OSAL::PathSeparator) + 1) + "Socket.cfg";
}

/// The whole path of a file that may be one in the working directory.
std::string WholePath(const std::string& path) {
    std::error_code ignored;
    return path.find(OSAL::PathSeparator) == std::string::npos
               ? std::filesystem::absolute(path, ignored).string()
               : path;
}

[[noreturn]] void Fail(const std::string& problem) {
    throw std::runtime_error(problem + "; give a port with --port");
}

/// Of a file that could not be opened.
std::string WhyNotOpened(const std::string& path, std::uint32_t error) {
    // The number is the same on all systems.
    constexpr std::uint32_t noSuchFile = 2;
    if (error != noSuchFile)
        return " cannot be opened (the system's error " + std::to_string(error) + ")";
    return OSAL::LookAtPath(path).isSymbolicLink ? " is a link that leads to no file"
                                                 : " is missing";
}

std::string ReadPortText(const std::string& path) {
    constexpr std::size_t bytesRead = 5;
    std::array<char, bytesRead> buffer{};
    const OSAL::OwnedHandle file = OSAL::OpenFileForReading(path);
    if (!file.IsOpen()) {
        const std::uint32_t error = OSAL::GetLastError();
        Fail(WholePath(path) + WhyNotOpened(path, error));
    }
    OSAL::ReadFile(file, buffer.data(), buffer.size());
    buffer.back() = '\0';
    return buffer.data();
}

} // namespace

std::uint16_t ReadPortFile() {
    const std::string path = PortFilePath();
    const auto port = ParseDecimal(ReadPortText(path));
    if (!port || *port == 0)
        Fail("the first four bytes of " + WholePath(path) + " hold no port");
    return static_cast<std::uint16_t>(*port);
}

} // namespace VemoSimulator
