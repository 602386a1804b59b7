#include "Tools/SarvexTool/Bench/Daemon/Daemon.h"

#include "Modules/xFramework/OSAL/File.h"
#include "Modules/xFramework/OSAL/Process.h"
#include "Modules/xFramework/Utilities/ProgramFiles.h"
#include "Tools/SarvexTool/Bench/Daemon/Connection.h"
#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Supervision/Answer.h"
#include "Tools/SarvexTool/Client/CliClient.h"
#include "Tools/SarvexTool/Client/Request.h"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace Bench {

namespace {

DaemonAnswer Understand(const Answer& answer) {
    // The client takes an answer without a code for 0. So it takes half an answer, and the page of
    // any other server, which say nothing about the settings.
    if (answer.isCodeUnreadable)
        throw std::runtime_error("gives a return code that is no number");
    if (!answer.explicitCode)
        throw std::runtime_error("gives no return code, so that it may have refused the settings; "
                                 "look whether it is another server or ended too early");
    return {answer.code != 0 || answer.hasErrors, answer.words};
}

constexpr const char* portFileName = "Socket.cfg";
// The client reads four bytes of the file.
constexpr std::size_t portSize = 4;

/// The whole path in UTF-8 of the port file that is read. Where the folder of the program has a
/// name that the client cannot read files by, that is one in the working directory.
std::string NameOfPortFile(const std::string& path) {
    if (path == portFileName) {
        std::error_code ignored;
        return NameOf(std::filesystem::absolute(PathOf(path), ignored));
    }
    const std::string program = OSAL::ModulePathInUtf8();
    return program.substr(0, program.rfind(OSAL::PathSeparator) + 1) + portFileName;
}

/// Why a port file that cannot be opened cannot.
std::string WhyNotOpened(const std::string& path, std::uint32_t error) {
    // The number is the same on all systems.
    constexpr std::uint32_t noSuchFile = 2;
    if (error != noSuchFile)
        return "cannot be opened (the system's error " + std::to_string(error) + ")";
    return OSAL::LookAtPath(path).isSymbolicLink ? "is a link that leads to no file" : "is missing";
}

std::string WhyNoPort(const std::string& path, const std::string& text) {
    if (OSAL::LookAtPath(path).isDirectory)
        return "is a folder";
    if (!OSAL::OpenFileForReading(path).IsOpen())
        return WhyNotOpened(path, OSAL::GetLastError());
    return text.empty() ? "is empty"
                        : "holds no port; it begins with \"" + text.substr(0, portSize) + "\"";
}

/// For a port file in the working directory.
std::string WhyThere(const std::string& path) {
    return path == portFileName
               ? " (it is read there because the client cannot read files in the program's own "
                 "folder, by the characters of its name)"
               : "";
}

} // namespace

std::string BuildCommandRequest(const std::string& host,
                                const std::vector<std::string>& arguments) {
    CliClient::Arguments values;
    for (const std::string& argument : arguments)
        values.emplace_back(argument);
    CliClient client;
    client.SetArguments(values);
    return SarvexTool::BuildRequest(host,
                                    SarvexTool::BuildCommandLine("-vemo", client.BuildArguments()));
}

std::uint16_t ReadPortBesideProgram() {
    const std::string path = Utilities::PathBesideProgram(portFileName);
    const std::string text = OSAL::ReadTextFile(path);
    const auto port = ParsePort(text.substr(0, portSize));
    if (!port)
        throw BadInput(NameOfPortFile(path),
                       WhyNoPort(path, text) + WhyThere(path) +
                           "; name the port after the host: --daemon HOST:PORT");
    return *port;
}

Daemon::Daemon(DaemonAddress address, std::chrono::milliseconds timeout)
    : m_address(std::move(address)), m_timeout(timeout) {}

std::optional<std::string> BypassAmong(const std::vector<std::string>& arguments) {
    CliClient client;
    client.SetArguments({arguments.begin(), arguments.end()});
    for (const char* name : {"-remoteDaemon", "-open_local_daemon", "-wifi-test-by-file"}) {
        if (client.HasArgument(name))
            return name;
    }
    return std::nullopt;
}

DaemonAnswer Daemon::Ask(const std::vector<std::string>& arguments) {
    using Clock = std::chrono::steady_clock;
    const std::string request = BuildCommandRequest(m_address.host, arguments);
    const Clock::time_point start = Clock::now();
    try {
        std::string bytes = ExchangeBytes(m_address.host, m_address.port, request, m_timeout);
        m_mayHaveTakenCommands = true;
        const Clock::duration taken = Clock::now() - start;
        DaemonAnswer answer = Understand(ReadAnswer(std::move(bytes)));
        m_total += taken;
        ++m_exchanges;
        return answer;
    } catch (const ExchangeFailure& error) {
        m_mayHaveTakenCommands = m_mayHaveTakenCommands || error.WasConnected();
        throw BadInput(m_address.ToText(), std::string("the daemon ") + error.what());
    } catch (const std::runtime_error& error) {
        throw BadInput(m_address.ToText(), std::string("the daemon ") + error.what());
    }
}

double Daemon::MeanSeconds() const {
    return m_exchanges == 0 ? 0 : m_total.count() / static_cast<double>(m_exchanges);
}

} // namespace Bench
