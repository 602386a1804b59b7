#include "Tools/SarvexTool/Bench/Files/ExchangeLog.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "tests/Support/Files.h"

#include <gmock/gmock.h>

#include <fstream>
#include <string>
#include <vector>

namespace Bench {
namespace {

using testing::ElementsAre;

class ExchangeLogTest : public testing::Test {
protected:
    std::vector<LoggedExchange> Read() const {
        std::ifstream file(path, std::ios::binary);
        ExchangeReader reader(file, path);
        std::vector<LoggedExchange> exchanges;
        for (LoggedExchange exchange; reader.Read(exchange);)
            exchanges.push_back(exchange);
        return exchanges;
    }

    TestSupport::TemporaryDirectory directory;
    const std::string path = directory.Path("exchanges.jsonl");
    LoggedExchange first{.number = 1,
                         .line = 0,
                         .by = Sender::Client,
                         .command = "CLI -1 -vemo  -wifi-get-mcc",
                         .answer = "HTTP/1.1 200 OK\r\n\r\n",
                         .result = ExchangeResult::Answered,
                         .seconds = 0.5,
                         .time = "2026-03-09T08:05:00.007Z"};
    LoggedExchange second{.number = 2,
                          .line = 7,
                          .by = Sender::Supervisor,
                          .command = "CLI \xFF",
                          .answer = std::string("\0\xFE", 2),
                          .result = ExchangeResult::ConnectionLost,
                          .seconds = 60,
                          .time = "2026-03-09T08:05:01.000Z"};
};

TEST_F(ExchangeLogTest, EachExchangeIsALineOfJson) {
    ExchangeLog log(path);
    log.Append(first);
    log.Append(second);
    log.Sync();
    EXPECT_EQ(
        TestSupport::ReadBytes(path),
        "{\"number\":1,\"line\":0,\"by\":\"client\",\"command\":\"CLI -1 -vemo  -wifi-get-mcc\","
        "\"answer\":\"HTTP/1.1 200 OK\\r\\n\\r\\n\",\"end\":\"answered\",\"seconds\":0.5,"
        "\"time\":\"2026-03-09T08:05:00.007Z\"}\n"
        "{\"number\":2,\"line\":7,\"by\":\"supervisor\",\"commandBase64\":\"Q0xJIP8=\","
        "\"answerBase64\":\"AP4=\",\"end\":\"connection lost\",\"seconds\":60.0,"
        "\"time\":\"2026-03-09T08:05:01.000Z\"}\n");
    EXPECT_THAT(Read(), ElementsAre(first, second));
}

TEST_F(ExchangeLogTest, EveryEndHasItsName) {
    {
        ExchangeLog log(path);
        for (const ExchangeResult result :
             {ExchangeResult::Answered, ExchangeResult::TimedOut, ExchangeResult::ConnectionLost,
              ExchangeResult::Unreachable}) {
            first.result = result;
            log.Append(first);
        }
    }
    const std::vector<LoggedExchange> exchanges = Read();
    ASSERT_EQ(exchanges.size(), 4u);
    EXPECT_EQ(exchanges[1].result, ExchangeResult::TimedOut);
    EXPECT_EQ(exchanges[3].result, ExchangeResult::Unreachable);
    const std::string bytes = TestSupport::ReadBytes(path);
    EXPECT_NE(bytes.find("\"end\":\"time-out\""), std::string::npos);
    EXPECT_NE(bytes.find("\"end\":\"unreachable\""), std::string::npos);
}

TEST_F(ExchangeLogTest, ALogGoesOnAfterItsLastWholeExchange) {
    ExchangeLog(path).Append(first);
    TestSupport::WriteBytes(path, TestSupport::ReadBytes(path) + "{\"number\":2,\"li");
    ExchangeLog(path).Append(second);
    EXPECT_THAT(Read(), ElementsAre(first, second));
}

TEST_F(ExchangeLogTest, AFileThatIsNoLogIsLeftAsItIs) {
    TestSupport::WriteBytes(path, "Band,Chains\n5,AB\n");
    try {
        const ExchangeLog log(path);
        FAIL() << "nothing was thrown";
    } catch (const BadInput& bad) {
        EXPECT_EQ(bad.File(), path);
        EXPECT_EQ(bad.Problems().at(0).line, 1u);
        EXPECT_EQ(bad.Problems().at(0).text, "there is no object of JSON");
    }
    EXPECT_EQ(TestSupport::ReadBytes(path), "Band,Chains\n5,AB\n");
}

} // namespace
} // namespace Bench
