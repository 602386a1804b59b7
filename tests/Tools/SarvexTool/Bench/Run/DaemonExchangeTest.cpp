#include "Tools/SarvexTool/Bench/Run/DaemonExchange.h"

#include "tests/EndToEnd/Support/ScriptedPeer.h"
#include "tests/Tools/SarvexTool/Bench/Run/LoopFixture.h"

#include <optional>

namespace Bench {
namespace {

using EndToEnd::Connection;
using EndToEnd::ScriptedPeer;
using std::chrono::milliseconds;

constexpr milliseconds ample(60'000);
/// Passes as a whole; what is sent before comes in time on a busy machine, too.
constexpr milliseconds patient(2000);
constexpr milliseconds brief(50);

const std::string request = "POST / HTTP/1.1\r\nContent-Length: 4\r\n\r\nbody";
const std::string head = "HTTP/1.1 200 OK\r\n\r\n";

class DaemonExchangeTest : public LoopFixture {
protected:
    void Begin(const std::string& host, const std::string& port, milliseconds timeout) {
        const DaemonAddress address{host, static_cast<std::uint16_t>(std::stoi(port))};
        if (!peer)
            peer = std::make_unique<DaemonPeer>(loop, address);
        end.reset();
        exchange = std::make_unique<DaemonExchange>(
            loop, *peer, request, timeout, [this](const ExchangeEnd& told) { end = told; });
    }

    ExchangeEnd Exchange(const std::string& port, milliseconds timeout,
                         const std::string& host = "127.0.0.1") {
        Begin(host, port, timeout);
        RunUntil([&] { return end.has_value(); });
        return *end;
    }

    /// With a daemon that does this after it has read the request.
    ExchangeEnd With(milliseconds timeout, const std::function<void(Connection&)>& answer) {
        const ScriptedPeer daemon([&](Connection& connection, int) {
            got = connection.ReadRequest();
            answer(connection);
        });
        return Exchange(daemon.Port(), timeout);
    }

    static void Expect(const ExchangeEnd& end, ExchangeEnd::Kind kind, const std::string& bytes,
                       const std::string& words) {
        EXPECT_EQ(end.kind, kind);
        EXPECT_EQ(end.bytes, bytes);
        EXPECT_EQ(end.words, words);
    }

    std::string got;
    std::optional<ExchangeEnd> end;
    std::unique_ptr<DaemonPeer> peer;
    std::unique_ptr<DaemonExchange> exchange;
};

TEST_F(DaemonExchangeTest, EndsWithTheEndMark) {
    const std::string answer = head + "Sarvex tool RETURN CODE\n0\nDone";
    const ExchangeEnd told = With(ample, [&](Connection& connection) {
        connection.Send(answer);
        connection.WaitForClose();
    });
    Expect(told, ExchangeEnd::Kind::Answered, answer, "");
    EXPECT_EQ(got, request);
}

TEST_F(DaemonExchangeTest, EndsWithAMarkThatComesAfterTheRest) {
    const ExchangeEnd told = With(ample, [&](Connection& connection) {
        connection.Send(head + "some text\n");
        connection.SendApart("Done");
        connection.SendApart("\nDone");
        connection.WaitForClose();
    });
    // The mark alone is text.
    Expect(told, ExchangeEnd::Kind::Answered, head + "some text\nDone\nDone", "");
}

TEST_F(DaemonExchangeTest, AReturnCodeIsAnAnswerWithoutTheMark) {
    const std::string answer = head + "Sarvex tool RETURN CODE\n0\n";
    Expect(With(ample,
                [&](Connection& connection) {
                    connection.Send(answer);
                    connection.Close();
                }),
           ExchangeEnd::Kind::Answered, answer, "");
    peer.reset();
    Expect(With(patient, [&](Connection& connection) { connection.Send(answer); }),
           ExchangeEnd::Kind::Answered, answer, "");
    peer.reset();
    Expect(With(ample,
                [&](Connection& connection) {
                    connection.Send(answer);
                    connection.WaitUntilTaken();
                    connection.Reset();
                }),
           ExchangeEnd::Kind::Answered, answer, "");
}

TEST_F(DaemonExchangeTest, LessThanAReturnCodeIsLost) {
    for (const std::string& answer :
         {std::string("half"), std::string("Sarvex tool RETURN CODE"),
          std::string("Sarvex tool RETURN CODE\n"), std::string("Sarvex tool RETURN CODE\n1"),
          std::string("Sarvex tool RETURN CODE\r\n0\r\n"),
          std::string("a Sarvex tool RETURN CODE\n0\n"),
          std::string("Sarvex\0tool RETURN CODE\nSarvex tool RETURN CODE\n0\n", 48)}) {
        SCOPED_TRACE(answer);
        peer.reset();
        Expect(With(ample,
                    [&](Connection& connection) {
                        connection.Send(head + answer);
                        connection.Close();
                    }),
               ExchangeEnd::Kind::Lost, head + answer,
               "closes the connection before the end of its answer");
    }
}

TEST_F(DaemonExchangeTest, NothingIsLost) {
    Expect(With(ample, [](Connection& connection) { connection.Close(); }), ExchangeEnd::Kind::Lost,
           "", "closes the connection without an answer");
}

TEST_F(DaemonExchangeTest, ABrokenConnectionIsLostInTheSystemsWords) {
    const ExchangeEnd told = With(ample, [](Connection& connection) {
        connection.Send("half");
        connection.WaitUntilTaken();
        connection.Reset();
    });
    EXPECT_EQ(told.kind, ExchangeEnd::Kind::Lost);
    EXPECT_EQ(told.bytes, "half");
    EXPECT_EQ(told.words.find("closes the connection before the end of its answer ("), 0u)
        << told.words;
}

TEST_F(DaemonExchangeTest, TimesOutWhenNothingMoreComes) {
    Expect(With(patient, [](Connection& connection) { connection.Send("half"); }),
           ExchangeEnd::Kind::TimedOut, "half", "gives no whole answer within 2 s");
    peer.reset();
    Expect(With(brief, [](Connection&) {}), ExchangeEnd::Kind::TimedOut, "",
           "gives no whole answer within 0.05 s");
}

TEST_F(DaemonExchangeTest, TheTimeCountsFromTheLastByte) {
    using Clock = std::chrono::steady_clock;
    constexpr milliseconds timeout(1500);
    std::string sent;
    const ExchangeEnd told = With(timeout, [&](Connection& connection) {
        const auto longAfter = Clock::now() + timeout + timeout / 4;
        while (Clock::now() < longAfter) {
            connection.SendApart(".");
            sent += ".";
        }
        connection.SendApart("the end Done");
        connection.WaitForClose();
    });
    EXPECT_EQ(told.kind, ExchangeEnd::Kind::Answered) << told.words;
    EXPECT_EQ(told.bytes, sent + "the end Done");
}

TEST_F(DaemonExchangeTest, IsUnreachableWhereNobodyListens) {
    const ExchangeEnd told = Exchange(EndToEnd::UnusedPort(), ample);
    EXPECT_EQ(told.kind, ExchangeEnd::Kind::Unreachable);
    EXPECT_EQ(told.bytes, "");
    EXPECT_EQ(told.words.find("cannot be reached ("), 0u) << told.words;
}

TEST_F(DaemonExchangeTest, AHostNameServesAllExchanges) {
    const ScriptedPeer daemon([](Connection& connection, int number) {
        connection.ReadRequest();
        connection.Send(std::to_string(number) + "Done");
        connection.Close();
    });
    for (const char* const answer : {"0Done", "1Done"})
        Expect(Exchange(daemon.Port(), ample, "localhost"), ExchangeEnd::Kind::Answered, answer,
               "");
}

TEST_F(DaemonExchangeTest, KeepsNulsAndReadsToThemAsTheClientDoes) {
    const std::string first("text\0hidden Done", 16);
    Expect(With(ample,
                [&](Connection& connection) {
                    connection.Send(first);
                    connection.SendApart("and Done");
                    connection.WaitForClose();
                }),
           ExchangeEnd::Kind::Answered, first + "and Done", "");
    peer.reset();
    const std::string nul(1, '\0');
    // Nothing before a NUL is the end of the answer for the client.
    Expect(With(ample,
                [&](Connection& connection) {
                    connection.Send(head);
                    connection.SendApart(nul + "Sarvex tool RETURN CODE\n0\nDone");
                    connection.WaitForClose();
                }),
           ExchangeEnd::Kind::Lost, head + nul + "Sarvex tool RETURN CODE\n0\nDone",
           "closes the connection before the end of its answer");
}

TEST_F(DaemonExchangeTest, TakesAHugeAnswerWhole) {
    std::string answer = head;
    while (answer.size() < (8u << 20))
        answer += "Target Power: Band 5 Bandwidth 80 Channel 36 Chain A (1) 17.5 dBm\n";
    // A mark at the end of a chunk in the middle would end it.
    answer += "Done";
    const ExchangeEnd told = With(ample, [&](Connection& connection) {
        connection.Send(answer);
        connection.WaitForClose();
    });
    EXPECT_EQ(told.kind, ExchangeEnd::Kind::Answered);
    EXPECT_TRUE(told.bytes == answer) << told.bytes.size();
}

TEST_F(DaemonExchangeTest, AnAbandonedOneClosesAndTellsNothing) {
    std::promise<void> asked;
    std::promise<void> closed;
    const ScriptedPeer daemon([&](Connection& connection, int) {
        connection.ReadRequest();
        asked.set_value();
        connection.WaitForClose();
        closed.set_value();
    });
    Begin("127.0.0.1", daemon.Port(), ample);
    auto isAsked = asked.get_future();
    RunUntil([&] { return isAsked.wait_for(milliseconds(0)) == std::future_status::ready; });
    exchange->Abandon();
    closed.get_future().wait();
    RunWhatIsReady();
    EXPECT_FALSE(end);
}

TEST_F(DaemonExchangeTest, OneMayBeginTheNextWhenItEnds) {
    const ScriptedPeer daemon([](Connection& connection, int number) {
        connection.ReadRequest();
        connection.Send(std::to_string(number) + "Done");
        connection.WaitForClose();
    });
    DaemonPeer address(loop, {"127.0.0.1", static_cast<std::uint16_t>(std::stoi(daemon.Port()))});
    std::string answers;
    std::function<void()> begin = [&] {
        exchange = std::make_unique<DaemonExchange>(loop, address, request, ample,
                                                    [&](const ExchangeEnd& told) {
                                                        answers += told.bytes;
                                                        if (answers.size() < 15)
                                                            begin();
                                                    });
    };
    begin();
    RunUntil([&] { return answers == "0Done1Done2Done"; });
}

} // namespace
} // namespace Bench
