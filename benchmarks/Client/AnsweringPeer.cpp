#include "benchmarks/Client/AnsweringPeer.h"

#include "Tools/SarvexTool/Client/Request.h"
#include "tests/EndToEnd/Support/ScriptedPeer.h"

namespace Bench {

const std::string AnsweringPeer::Request =
    SarvexTool::BuildRequest("127.0.0.1", "CLI -1 -vemo  -wifi-stop");

struct AnsweringPeer::System {
    explicit System(const std::string& body)
        : answer("HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: " +
                 std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" + body),
          peer([this](EndToEnd::Connection& connection, int) {
              connection.ReadRequest();
              connection.Send(answer);
              connection.Close();
          }) {}

    std::string answer;
    EndToEnd::ScriptedPeer peer;
};

AnsweringPeer::AnsweringPeer(const std::string& body)
    : m_system(std::make_unique<System>(body)), m_port(m_system->peer.Port()) {}

AnsweringPeer::~AnsweringPeer() = default;

} // namespace Bench
