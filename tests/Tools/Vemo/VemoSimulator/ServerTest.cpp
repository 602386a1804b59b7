#include "Tools/Vemo/VemoSimulator/Server.h"

#include "tests/Tools/Vemo/VemoSimulator/Support/Peer.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace VemoSimulator {

namespace {

/// Answers with what it was asked.
class Echo : public IRequestHandler {
public:
    Delivery Handle(const Request& request) override {
        if (request.body == "throw")
            throw std::runtime_error("told to fail");
        Delivery delivery;
        delivery.bytes = request.method + " " + request.target;
        for (const auto& [name, value] : request.headers)
            delivery.bytes += " " + name + "=" + value;
        delivery.bytes += " " + request.body;
        delivery.endsProgram = request.body == "end";
        return delivery;
    }

    Delivery HandleInvalid(int httpStatus, const std::string& problem) override {
        Delivery delivery;
        delivery.bytes = std::to_string(httpStatus) + " " + problem;
        return delivery;
    }
};

class ServerTest : public testing::Test {
protected:
    ~ServerTest() override {
        if (m_thread.joinable())
            End();
    }

    void End() {
        Ask("POST / HTTP/1.1\r\nContent-Length: 3\r\n\r\nend");
        m_thread.join();
    }

    std::string Ask(const std::string& request) {
        Peer peer(m_server.Port());
        peer.Send(request);
        return peer.ReadToEnd();
    }

    std::ostringstream m_log;
    Echo m_handler;
    Server m_server{{"127.0.0.1", 0, 1000}, m_handler, m_log};
    std::thread m_thread{[this] { m_server.Run(); }};
};

std::string ListenError(const std::string& address, std::uint16_t port) {
    std::ostringstream log;
    Echo handler;
    try {
        const Server server({address, port, 1000}, handler, log);
        return "";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

} // namespace

TEST_F(ServerTest, AFreePortHasFourDigits) {
    EXPECT_GE(m_server.Port(), 1024);
    EXPECT_LE(m_server.Port(), 9999);
}

TEST_F(ServerTest, TheHandlerSeesTheWholeRequest) {
    EXPECT_EQ(Ask("PUT /a?b HTTP/1.1\r\nHost: x:1\r\nX-Y:  z \r\nContent-Length: 4\r\n\r\nbody"),
              "PUT /a?b Host=x:1 X-Y=z Content-Length=4 body");
}

TEST_F(ServerTest, ABodyMayComeInChunks) {
    EXPECT_EQ(Ask("POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nbo\r\n2\r\ndy\r\n0\r\n"
                  "\r\n"),
              "POST / Transfer-Encoding=chunked body");
}

TEST_F(ServerTest, ARequestMayComeInPieces) {
    Peer peer(m_server.Port());
    for (const char byte : std::string("GET / HTTP/1.1\r\nContent-Length: 1\r\n\r\nx"))
        peer.Send(std::string(1, byte));
    EXPECT_EQ(peer.ReadToEnd(), "GET / Content-Length=1 x");
}

TEST_F(ServerTest, AClientThatHasFinishedSendingGetsItsAnswer) {
    Peer peer(m_server.Port());
    peer.Send("GET / HTTP/1.1\r\n\r\n");
    peer.FinishSending();
    EXPECT_EQ(peer.ReadToEnd(), "GET / ");
}

TEST_F(ServerTest, WhatIsNoRequestGetsABadRequest) {
    const struct {
        std::string bytes;
        const char* answer;
    } rows[] = {
        {"garbage\r\n\r\n", "400 bad method"},
        {"GET \x01 HTTP/1.1\r\n\r\n", "400 bad target"},
        {"GET / HTTP/9.9\r\n\r\n", "400 bad version"},
        {std::string("\0\xFF\r\n\r\n", 6), "400 bad method"},
        {"POST / HTTP/1.1\r\nContent-Length: x\r\n\r\n", "400 bad Content-Length"},
        {"GET / HTTP/1.1\r\nX: " + std::string(70000, 'x') + "\r\n\r\n",
         "400 header limit exceeded"},
        {"POST / HTTP/1.1\r\nContent-Length: 1001\r\n\r\n", "413 body limit exceeded"},
        {"POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n3E9\r\n" + std::string(1001, 'x'),
         "413 body limit exceeded"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.answer);
        EXPECT_EQ(Ask(row.bytes), row.answer);
    }
}

TEST_F(ServerTest, ARequestThatBreaksOffGetsABadRequest) {
    Peer peer(m_server.Port());
    peer.Send("POST / HTTP/1.1\r\nContent-Length: 10\r\n\r\nhalf");
    peer.FinishSending();
    EXPECT_EQ(peer.ReadToEnd(), "400 partial message");
}

TEST_F(ServerTest, AClientThatLeavesWithoutAWordIsNoProblem) {
    { const Peer peer(m_server.Port()); }
    EXPECT_EQ(Ask("GET / HTTP/1.1\r\n\r\n"), "GET / ");
    End();
    EXPECT_EQ(m_log.str(), "");
}

TEST_F(ServerTest, AHandlerThatFailsCostsOnlyItsConnection) {
    EXPECT_EQ(Ask("POST / HTTP/1.1\r\nContent-Length: 5\r\n\r\nthrow"), "");
    EXPECT_EQ(Ask("GET / HTTP/1.1\r\n\r\n"), "GET / ");
    End();
    EXPECT_EQ(m_log.str(), "A request cannot be answered: told to fail\n");
}

TEST_F(ServerTest, APortInUseIsRefused) {
    const std::string start =
        "cannot listen on 127.0.0.1:" + std::to_string(m_server.Port()) + ": ";
    EXPECT_EQ(ListenError("127.0.0.1", m_server.Port()).substr(0, start.size()), start);
}

TEST(ServerAddressTest, AWrongAddressIsRefused) {
    EXPECT_EQ(ListenError("localhost", 0), "'localhost' is no numeric address");
    // An address for documentation, which no machine has.
    EXPECT_EQ(ListenError("192.0.2.1", 0).substr(0, 29), "cannot listen on 192.0.2.1:0:");
}

TEST(ServerSignalTest, SignalsOfTheSystemEndTheServer) {
    for (const int signal : {SIGINT, SIGTERM, VEMO_CONSOLE_CLOSE_SIGNAL}) {
        SCOPED_TRACE(signal);
        std::ostringstream log;
        Echo handler;
        Server server({"127.0.0.1", 0, 1000}, handler, log);
        std::thread thread([&] { server.Run(); });
        EXPECT_EQ(std::raise(signal), 0);
        thread.join();
    }
}

} // namespace VemoSimulator
