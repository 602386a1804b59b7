#include "Tools/SarvexTool/Bench/Run/Relay.h"

#include "Tools/SarvexTool/Client/Request.h"
#include "tests/Tools/SarvexTool/Bench/Run/LoopFixture.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>

#include <deque>
#include <vector>

namespace Bench {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using Error = boost::system::error_code;

/// A client that waits for each of its steps. The system connects it before the relay accepts it.
class Client {
public:
    explicit Client(std::uint16_t port) {
        m_socket.connect({asio::ip::address_v4::loopback(), port});
    }

    void Send(const std::string& bytes) {
        Error ignored;
        asio::write(m_socket, asio::buffer(bytes), ignored);
    }

    std::string ReadToEnd() {
        std::string bytes;
        Error end;
        asio::read(m_socket, asio::dynamic_buffer(bytes), end);
        return bytes;
    }

    void Reset() {
        Error ignored;
        m_socket.set_option(asio::socket_base::linger(true, 0), ignored);
        m_socket.close(ignored);
    }

private:
    asio::io_context m_context;
    tcp::socket m_socket{m_context};
};

std::string Request(const std::string& command) {
    return SarvexTool::BuildRequest("127.0.0.1", command);
}

class RelayTest : public LoopFixture {
protected:
    void RunUntilRequested(std::size_t count) {
        RunUntil([&] { return requests.size() >= count; });
    }

    /// What a client reads until the relay closes the connection.
    std::string ReadToEnd(Client& client) {
        auto answer = std::async(std::launch::async, [&] { return client.ReadToEnd(); });
        return RunUntilThereIs(answer);
    }

    void ExpectExchange(const std::string& command) {
        Client client(relay.Port());
        client.Send(Request(command));
        RunUntilRequested(requests.size() + 1);
        EXPECT_EQ(requests.back(), Request(command));
        relay.Reply("to " + command);
        EXPECT_EQ(ReadToEnd(client), "to " + command);
    }

    std::vector<std::string> requests;
    Relay relay{loop, [this](std::string request) { requests.push_back(std::move(request)); }};
};

TEST_F(RelayTest, HasAPortOfItsOwnBelowThoseThatDaemonsMostlyHave) {
    const Relay other(loop, [](const std::string&) {});
    EXPECT_NE(relay.Port(), other.Port());
    for (const Relay* const pRelay : {&std::as_const(relay), &other}) {
        EXPECT_GE(pRelay->Port(), 1024);
        EXPECT_LT(pRelay->Port(), 2000);
    }
}

TEST_F(RelayTest, ServesOneRequestAfterTheOther) {
    for (const char* const command : {"first", "second", "third"})
        ExpectExchange(command);
    EXPECT_EQ(requests.size(), 3u);
}

TEST_F(RelayTest, HandsOverARequestWhenItIsWhole) {
    const std::string request = Request(std::string(2000, 'a'));
    Client client(relay.Port());
    client.Send(request.substr(0, 512));
    RunWhatIsReady();
    EXPECT_TRUE(requests.empty());
    client.Send(request.substr(512));
    RunUntilRequested(1);
    EXPECT_EQ(requests.front(), request);
}

TEST_F(RelayTest, WithoutBytesOnlyCloses) {
    Client client(relay.Port());
    client.Send(Request("a"));
    RunUntilRequested(1);
    relay.Reply("");
    EXPECT_EQ(ReadToEnd(client), "");
    ExpectExchange("b");
}

TEST_F(RelayTest, SendsAHugeAnswerWhole) {
    const std::string answer(8u << 20, 'a');
    Client client(relay.Port());
    client.Send(Request("a"));
    RunUntilRequested(1);
    relay.Reply(answer);
    EXPECT_TRUE(ReadToEnd(client) == answer);
}

TEST_F(RelayTest, ClosesForeignConnectionsWhichDoNotCount) {
    for (const char* const text : {"GET / HTTP/1.1\r\n\r\n", "POST /other", "x"}) {
        SCOPED_TRACE(text);
        Client foreign(relay.Port());
        foreign.Send(text);
        EXPECT_EQ(ReadToEnd(foreign), "");
    }
    EXPECT_TRUE(requests.empty());
    ExpectExchange("a");
}

TEST_F(RelayTest, StalledConnectionsBlockNoOther) {
    std::deque<Client> stalled;
    for (const char* const text : {"", "POST", "POST /api/oemtools/command HTTP/1.1\r\nHost:", ""})
        stalled.emplace_back(relay.Port()).Send(text);
    for (const char* const command : {"first", "second"})
        ExpectExchange(command);
}

TEST_F(RelayTest, OfManyStalledConnectionsTheOldestGoes) {
    std::deque<Client> stalled;
    for (int count = 0; count < 10; ++count)
        stalled.emplace_back(relay.Port()).Send("POST");
    for (int count = 0; count < 6; ++count) {
        SCOPED_TRACE(count);
        EXPECT_EQ(ReadToEnd(stalled[static_cast<std::size_t>(count)]), "");
    }
    const std::string request = Request("last");
    stalled.back().Send(request.substr(4));
    RunUntilRequested(1);
    EXPECT_EQ(requests.front(), request);
}

TEST_F(RelayTest, ARequestDuringAnotherWaitsForItsTurn) {
    Client first(relay.Port());
    first.Send(Request("first"));
    RunUntilRequested(1);
    Client second(relay.Port());
    second.Send(Request("second"));
    // Served in the order in which they came: when a third one was closed, the second was read.
    Client foreign(relay.Port());
    foreign.Send("x");
    EXPECT_EQ(ReadToEnd(foreign), "");
    EXPECT_EQ(requests.size(), 1u);
    relay.Reply("answer");
    EXPECT_EQ(ReadToEnd(first), "answer");
    RunUntilRequested(2);
    EXPECT_EQ(requests.back(), Request("second"));
}

TEST_F(RelayTest, AClientThatIsGoneIsNoObstacle) {
    Client client(relay.Port());
    client.Send(Request("gone"));
    RunUntilRequested(1);
    client.Reset();
    relay.Reply(std::string(8u << 20, 'a'));
    ExpectExchange("next");
}

TEST_F(RelayTest, AnAnswerToNobodyIsDropped) {
    relay.Reply("nobody's");
    ExpectExchange("a");
    relay.Reply("nobody's");
    ExpectExchange("b");
}

TEST_F(RelayTest, ClosesEverythingWithItsObject) {
    auto pOther = std::make_unique<Relay>(
        loop, [this](std::string request) { requests.push_back(std::move(request)); });
    Client asking(pOther->Port());
    asking.Send(Request("a"));
    RunUntilRequested(1);
    Client stalled(pOther->Port());
    Client foreign(pOther->Port());
    foreign.Send("x");
    EXPECT_EQ(ReadToEnd(foreign), "");
    const std::uint16_t port = pOther->Port();
    pOther.reset();
    EXPECT_EQ(ReadToEnd(asking), "");
    EXPECT_EQ(ReadToEnd(stalled), "");
    EXPECT_THROW(Client{port}, boost::system::system_error);
}

} // namespace
} // namespace Bench
