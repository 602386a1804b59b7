#include "Tools/Vemo/VemoSimulator/RequestLog.h"

#include <gtest/gtest.h>

namespace VemoSimulator {

TEST(RequestLogTest, ACommandIsLoggedWithNumberCodeAndFaults) {
    const Request request{"POST",
                          "/api/oemtools/command",
                          {{"Host", "127.0.0.1:8738"}, {"Content-Length", "23"}},
                          "CLI -1 -vemo -wifi-stop"};
    EXPECT_EQ(FormatLogLine(request, {3, 200, "0", 150, {"3:crlf", "*:drip"}}),
              R"({"number":3,"method":"POST","target":"/api/oemtools/command",)"
              R"("command":"CLI -1 -vemo -wifi-stop","bodyBytes":23,)"
              R"("headers":{"Host":"127.0.0.1:8738","Content-Length":"23"},)"
              R"("httpStatus":200,"returnCode":"0","answerBytes":150,)"
              R"("faults":["3:crlf","*:drip"]})");
}

TEST(RequestLogTest, ARefusedRequestHasNeitherNumberNorReturnCode) {
    EXPECT_EQ(FormatLogLine({"GET", "/", {}, ""}, {0, 404, "", 129, {}}),
              R"({"method":"GET","target":"/","command":"","bodyBytes":0,"headers":{},)"
              R"("httpStatus":404,"answerBytes":129,"faults":[]})");
}

TEST(RequestLogTest, EveryByteIsTheCharacterOfItsNumber) {
    const Request request{
        "POST", "/\xE4", {{"X", "\x80\xFF"}}, std::string("a\0\"\\\n\xC3\xA4", 7)};
    EXPECT_EQ(FormatLogLine(request, {1, 200, "\xBF", 0, {"text=\xC0:crlf"}}),
              "{\"number\":1,\"method\":\"POST\",\"target\":\"/\xC3\xA4\","
              "\"command\":\"a\\u0000\\\"\\\\\\n\xC3\x83\xC2\xA4\",\"bodyBytes\":7,"
              "\"headers\":{\"X\":\"\xC2\x80\xC3\xBF\"},\"httpStatus\":200,"
              "\"returnCode\":\"\xC2\xBF\",\"answerBytes\":0,\"faults\":[\"text=\xC3\x80:crlf\"]}");
}

} // namespace VemoSimulator
