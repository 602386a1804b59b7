// Property: whatever bytes a client sends, the simulated daemon answers once, with a head that
// tells its body's length: with 200 where it took a command, with 400, 404 or 413 otherwise, and
// not at all where not one byte of a request came. An answer to a command ends in the end mark, a
// client that reads 512 bytes at a time stops at it and nowhere else, and finds errors only with a
// code for them. A well-formed request with a command is always taken. The request log gets one
// line of JSON for each answer, from which the command can be told byte for byte.
//
// Input: 'r' and the raw bytes of a request, or 'c' and commands, one record each, which are sent
// in well-formed requests to the same device.

#include "Tools/Vemo/VemoSimulator/Connection.h"
#include "Tools/Vemo/VemoSimulator/Simulator.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"
#include "fuzz/Support/PlainReply.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/local/connect_pair.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <sstream>

namespace {

namespace asio = boost::asio;
using boost::system::error_code;

constexpr std::uint64_t bodyLimit = 1000;
const std::string commandStart = "CLI -1 ";

struct Answer {
    int status = 0;
    std::string bytes;
    std::string body;
};

/// One for all connections: each has descriptors of its own. No operation is left under way in it
/// when a connection has been sent to.
asio::io_context& TheContext() {
    static asio::io_context context{1};
    return context;
}

/// One simulated daemon and what it writes.
class Daemon {
public:
    /// Sends the bytes over a connection of their own, closes that side and returns what comes
    /// back.
    std::string Send(const std::string& bytes) {
        asio::io_context& context = TheContext();
        context.restart();
        asio::local::stream_protocol::socket client(context);
        asio::local::stream_protocol::socket server(context);
        asio::local::connect_pair(client, server);
        // A connection takes a TCP socket; nothing that it does depends on the protocol.
        asio::ip::tcp::socket accepted(context);
        accepted.assign(asio::ip::tcp::v4(), server.release());
        std::make_shared<VemoSimulator::Connection>(std::move(accepted), m_shared)->Start();

        std::string answer;
        asio::async_write(client, asio::buffer(bytes), [&](const error_code&, std::size_t) {
            error_code ignored;
            client.shutdown(asio::socket_base::shutdown_send, ignored);
        });
        asio::async_read(client, asio::dynamic_buffer(answer), [&](const error_code&, std::size_t) {
            error_code ignored;
            client.close(ignored);
        });
        context.run();
        return answer;
    }

    /// The lines of the request log, and none from now on.
    std::vector<std::string> TakeLog() {
        std::vector<std::string> lines = Split(m_requestLog.str(), '\n');
        lines.pop_back();
        m_requestLog.str("");
        return lines;
    }

    bool HasEnded() const { return m_hasEnded; }

private:
    bool m_hasEnded = false;
    std::ostringstream m_requestLog;
    std::ostringstream m_problems;
    VemoSimulator::Simulator m_simulator{{}, &m_requestLog, m_problems};
    VemoSimulator::ConnectionContext m_shared{
        m_simulator, m_problems, bodyLimit, [this] { m_hasEnded = true; }, {}, {}};
};

Answer Parse(const std::string& bytes) {
    const std::string start = "HTTP/1.1 ";
    const std::string lengthLabel = "\r\nContent-Length: ";
    const std::size_t headEnd = bytes.find("\r\n\r\n");
    const std::size_t length = bytes.find(lengthLabel);
    Check(bytes.starts_with(start) && headEnd != std::string::npos && length < headEnd,
          "an answer has a head that tells its length");
    Answer answer{std::stoi(bytes.substr(start.size())), bytes, bytes.substr(headEnd + 4)};
    CheckEqual(std::stoul(bytes.substr(length + lengthLabel.size())), answer.body.size(),
               "an answer is as long as its head says");
    return answer;
}

/// As a client reads that gets 512 bytes at a time.
void CheckCommandAnswer(const Answer& answer, bool hasEnded) {
    constexpr int highestCode = 10;
    std::deque<std::string> pieces{answer.bytes};
    int reads = 0;
    const std::string message = PlainReceive(pieces, reads);
    CheckEqual(message + "Done", answer.bytes, "a client stops at the end mark and nowhere else");
    const PlainReply reply = PlainSort(message);
    CheckEqual(reply.problem, "", "an answer gives a number as its code");
    Check(reply.returnCode >= 0 && reply.returnCode <= highestCode, "a code is one of the known");
    Check(reply.error.empty() || (reply.returnCode != 0 && reply.information.empty()),
          "an error comes alone and with a code");
    const bool saysEnd = reply.information.find("The simulated daemon ends.") != std::string::npos;
    CheckEqual(hasEnded, saysEnd, "the program ends when it says so");
}

void CheckRefusal(const Answer& answer) {
    const bool isKnown = answer.status == 400 || answer.status == 404 || answer.status == 413;
    Check(isKnown, "what is no command is refused with 400, 404 or 413");
    Check(!answer.body.empty() && !answer.body.ends_with("Done"),
          "a refusal says why, without mark");
}

/// Takes back what the log does to bytes: each is the character of that number, in UTF-8.
std::string BytesOf(const std::string& characters) {
    std::string bytes;
    for (std::size_t index = 0; index < characters.size(); ++index) {
        const auto unit = static_cast<unsigned char>(characters[index]);
        if (unit < 0x80) {
            bytes.push_back(characters[index]);
        } else {
            const auto next = static_cast<unsigned char>(characters[++index]);
            bytes.push_back(static_cast<char>((unit & 0x03) << 6 | (next & 0x3F)));
        }
    }
    return bytes;
}

nlohmann::json CheckLog(const std::vector<std::string>& lines, const Answer& answer) {
    CheckEqual(lines.size(), std::size_t{1}, "each answer has a line in the request log");
    nlohmann::json line = nlohmann::json::parse(lines.front(), nullptr, false);
    Check(!line.is_discarded(), "a line of the request log is JSON");
    CheckEqual(line["httpStatus"].get<int>(), answer.status, "the log tells the status");
    CheckEqual(line["answerBytes"].get<std::size_t>(), answer.bytes.size(),
               "the log tells the size");
    CheckEqual(line.contains("number"), answer.status == 200, "the log numbers commands");
    return line;
}

void TryRaw(const std::string& request) {
    Daemon daemon;
    const std::string bytes = daemon.Send(request);
    if (bytes.empty()) {
        Check(request.find_first_not_of("\r\n") == std::string::npos, "every request is answered");
        CheckEqual(daemon.TakeLog().size(), std::size_t{0}, "no request, no line in the log");
        return;
    }
    const Answer answer = Parse(bytes);
    if (answer.status == 200)
        CheckCommandAnswer(answer, daemon.HasEnded());
    else
        CheckRefusal(answer);
    CheckLog(daemon.TakeLog(), answer);
}

void TryCommand(Daemon& daemon, const std::string& command) {
    const std::string body = (commandStart + command).substr(0, bodyLimit);
    const Answer answer =
        Parse(daemon.Send("POST /api/oemtools/command HTTP/1.1\r\nHost: x\r\nContent-Length: " +
                          std::to_string(body.size()) + "\r\n\r\n" + body));
    CheckEqual(answer.status, 200, "a well-formed request with a command is taken");
    CheckCommandAnswer(answer, daemon.HasEnded());
    nlohmann::json line = CheckLog(daemon.TakeLog(), answer);
    CheckEqual(BytesOf(line["command"].get<std::string>()), body, "the log keeps the command");
}

void TryCommands(std::vector<std::string> commands) {
    // A few requests show what one leaves to the next, and each costs as much as an input.
    constexpr std::size_t mostCommands = 6;
    commands.resize(std::min(commands.size(), mostCommands));
    Daemon daemon;
    for (const std::string& command : commands) {
        TryCommand(daemon, command);
        if (daemon.HasEnded())
            return;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = ToText(data, size);
    if (input.starts_with('r'))
        TryRaw(input.substr(1));
    else if (input.starts_with('c'))
        TryCommands(Split(input.substr(1), RecordSeparator));
    return 0;
}
