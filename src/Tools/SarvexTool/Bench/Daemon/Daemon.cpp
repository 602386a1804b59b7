#include "Tools/SarvexTool/Bench/Daemon/Daemon.h"

#include "Modules/xFramework/OSAL/File.h"
#include "Modules/xFramework/Utilities/ProgramFiles.h"
#include "Tools/SarvexTool/Bench/Daemon/Connection.h"
#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Client/CliClient.h"
#include "Tools/SarvexTool/Client/Reply.h"
#include "Tools/SarvexTool/Client/Request.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace Bench {

namespace {

/// The lines of a text in one, without empty ones.
std::string InOneLine(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view part = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        while (part.ends_with('\r') || part.ends_with(' '))
            part.remove_suffix(1);
        if (!part.empty())
            line.append(line.empty() ? "" : "; ").append(part);
    }
    return line;
}

std::string CommandLineOf(const std::vector<std::string>& arguments) {
    CliClient::Arguments values;
    for (const std::string& argument : arguments)
        values.emplace_back(argument);
    CliClient client;
    client.SetArguments(values);
    return SarvexTool::BuildCommandLine("-vemo", client.BuildArguments());
}

/// The client takes an answer without one for 0. So it takes half an answer, and the page of any
/// other server, which say nothing about the settings.
bool HasReturnCode(const SarvexTool::Reply& reply) {
    constexpr std::string_view marker = "Sarvex tool RETURN CODE\n";
    return reply.allLines.starts_with(marker) ||
           reply.allLines.find("\n" + std::string(marker)) != std::string::npos;
}

DaemonAnswer Understand(const SarvexTool::Reply& reply) {
    DaemonAnswer answer;
    answer.isRefusal = reply.returnCode != 0 || !InOneLine(reply.Error()).empty();
    answer.words = InOneLine(reply.Error());
    if (answer.words.empty())
        answer.words = InOneLine(reply.Information());
    if (answer.words.empty())
        answer.words = "return code " + std::to_string(reply.returnCode);
    return answer;
}

} // namespace

std::uint16_t ReadPortBesideProgram() {
    const std::string path = Utilities::PathBesideProgram("Socket.cfg");
    // The client reads four bytes of the file.
    constexpr std::size_t portSize = 4;
    const auto port = ParsePort(OSAL::ReadTextFile(path).substr(0, portSize));
    if (!port)
        throw BadInput(path, "has no port of four digits; name one after the host: HOST:PORT");
    return *port;
}

Daemon::Daemon(DaemonAddress address, std::chrono::milliseconds timeout)
    : m_address(std::move(address)), m_timeout(timeout) {}

DaemonAnswer Daemon::Ask(const std::vector<std::string>& arguments) {
    using Clock = std::chrono::steady_clock;
    const std::string request = SarvexTool::BuildRequest(m_address.host, CommandLineOf(arguments));
    const Clock::time_point start = Clock::now();
    std::string bytes;
    try {
        bytes = ExchangeBytes(m_address.host, m_address.port, request, m_timeout);
    } catch (const ExchangeFailure& error) {
        m_mayHaveTakenCommands = m_mayHaveTakenCommands || error.WasConnected();
        throw BadInput(m_address.ToText(), std::string("the daemon ") + error.what());
    }
    m_mayHaveTakenCommands = true;
    const Clock::duration taken = Clock::now() - start;
    const SarvexTool::Reply reply =
        SarvexTool::SortReply(SarvexTool::CutHttpHead(std::move(bytes)));
    if (reply.failure)
        throw BadInput(m_address.ToText(), "the daemon gives a return code that is no number");
    if (!HasReturnCode(reply))
        throw BadInput(m_address.ToText(),
                       "the daemon gives no return code, so that it may have refused the settings; "
                       "look whether it is another server or ended too early");
    m_total += taken;
    ++m_exchanges;
    return Understand(reply);
}

double Daemon::MeanSeconds() const {
    return m_exchanges == 0 ? 0 : m_total.count() / static_cast<double>(m_exchanges);
}

} // namespace Bench
