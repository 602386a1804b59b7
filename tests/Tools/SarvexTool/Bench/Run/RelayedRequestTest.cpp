#include "Tools/SarvexTool/Bench/Run/RelayedRequest.h"

#include "Tools/SarvexTool/Client/Request.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

using State = RelayedRequest::State;

const std::string request = SarvexTool::BuildRequest("127.0.0.1", "CLI -1 -vemo  -wifi-stop");

TEST(RelayedRequestTest, IsWholeWithItsLastByte) {
    RelayedRequest relayed;
    for (std::size_t index = 0; index < request.size(); ++index) {
        SCOPED_TRACE(index);
        const bool isLast = index + 1 == request.size();
        ASSERT_EQ(relayed.Add(request.substr(index, 1)),
                  isLast ? State::Complete : State::Incomplete);
    }
    EXPECT_EQ(relayed.Bytes(), request);
}

TEST(RelayedRequestTest, MayHaveNoBodyAndAnyBytesInIt) {
    for (const std::string& body : {std::string(), std::string("\0\r\n\r\n\xFF", 6)}) {
        const std::string whole = SarvexTool::BuildRequest("daemon", body);
        RelayedRequest relayed;
        EXPECT_EQ(relayed.Add(whole), State::Complete);
        EXPECT_EQ(relayed.Bytes(), whole);
    }
}

TEST(RelayedRequestTest, EndsWhereItsLengthSays) {
    RelayedRequest relayed;
    EXPECT_EQ(relayed.Add(request + "more"), State::Complete);
    EXPECT_EQ(relayed.Bytes(), request);
}

TEST(RelayedRequestTest, IsForeignWhenItBeginsOtherwiseOrHasNoLength) {
    const std::string line = "POST /api/oemtools/command HTTP/1.1\r\n";
    for (const std::string& text :
         {std::string("GET / HTTP/1.1\r\n"), std::string("\x16\x03\x01"), std::string("PUT"),
          std::string("POST /api/oemtools/commands"), std::string("post"), line + "Host: a\r\n\r\n",
          line + "Content-Length: \r\n\r\n", line + "Content-Length: -1\r\n\r\n",
          line + "Content-Length: 1x\r\n\r\n", line + "Content-Length: 99999999999\r\n\r\n",
          line + std::string(70'000, 'a')}) {
        SCOPED_TRACE(text.substr(0, 80));
        EXPECT_EQ(RelayedRequest().Add(text), State::Foreign);
    }
}

} // namespace
} // namespace Bench
