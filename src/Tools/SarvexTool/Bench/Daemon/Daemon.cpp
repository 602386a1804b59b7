#include "Tools/SarvexTool/Bench/Daemon/Daemon.h"

#include "Modules/xFramework/OSAL/File.h"
#include "Modules/xFramework/Utilities/ProgramFiles.h"
#include "Tools/SarvexTool/Bench/Daemon/Connection.h"
#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Client/CliClient.h"
#include "Tools/SarvexTool/Client/Reply.h"
#include "Tools/SarvexTool/Client/Request.h"

#include <algorithm>
#include <stdexcept>
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
    } catch (const std::runtime_error& error) {
        throw BadInput(m_address.ToText(), std::string("the daemon ") + error.what());
    }
    m_total += Clock::now() - start;
    ++m_exchanges;
    const SarvexTool::Reply reply =
        SarvexTool::SortReply(SarvexTool::CutHttpHead(std::move(bytes)));
    if (reply.failure)
        throw BadInput(m_address.ToText(), "the daemon gives a return code that is no number");
    return Understand(reply);
}

double Daemon::MeanSeconds() const {
    return m_exchanges == 0 ? 0 : m_total.count() / static_cast<double>(m_exchanges);
}

} // namespace Bench
