#include "Tools/SarvexTool/Client/Request.h"

#include "Modules/xFramework/Utilities/FormatProviders.h"

#include <gtest/gtest.h>

namespace SarvexTool {

namespace {

/// A request, byte for byte.
std::string ExpectedRequest(const std::string& address, const std::string& length,
                            const std::string& body) {
    return "POST /api/oemtools/command HTTP/1.1\r\nHost: " + address +
           ":8738\r\nConnection: keep-alive\r\nContent-Length: " + length +
           "\r\nAccept: application/json, text/plain, */*\r\nUser-Agent: Mozilla/5.0 (Windows NT "
           "10.0; Win64; x64) AppleWebKit/537.36 (KHTML, like Gecko) Chrome/86.0.4240.193 "
           "Safari/537.36\r\nContent-Type: text/plain\r\nOrigin: " +
           address +
           ":8738\r\nSec-Fetch-Site: same-origin\r\nSec-Fetch-Mode: cors\r\nSec-Fetch-Dest: "
           "empty\r\nReferer: http://" +
           address +
           ":8738/homepage\r\nAccept-Encoding: gzip, deflate, br\r\nAccept-Language: "
           "en-US,en;q=0.9\r\n\r\n" +
           body;
}

TEST(RequestTest, CommandLineKeepsTheBlanksOfPrefixAndArguments) {
    EXPECT_EQ(BuildCommandLine("-vemo ", " -wifi-stop"), "CLI -1 -vemo  -wifi-stop");
    EXPECT_EQ(BuildCommandLine("-vemo", " -wifi-stop"), "CLI -1 -vemo -wifi-stop");
    EXPECT_EQ(BuildCommandLine("", " -exit"), "CLI -1  -exit");
    EXPECT_EQ(BuildCommandLine("-vemo ", ""), "CLI -1 -vemo ");
    EXPECT_EQ(BuildCommandLine("", ""), "CLI -1 ");
}

TEST(RequestTest, RequestHoldsAddressLengthAndBody) {
    EXPECT_EQ(BuildRequest("10.0.0.7", "CLI -1 -vemo  -wifi-stop"),
              ExpectedRequest("10.0.0.7", "24", "CLI -1 -vemo  -wifi-stop"));
    EXPECT_EQ(BuildRequest("", ""), ExpectedRequest("", "0", ""));
}

TEST(RequestTest, TemplateHas502Bytes) {
    // Each of the five fields has four bytes in the template.
    EXPECT_EQ(BuildRequest("", "").size() - std::string("0").size() + 5 * 4, 502u);
}

TEST(RequestTest, LengthCountsEveryByteOfTheBody) {
    std::string body = "\"a b\" \xC3\xA4 \x85\t\\";
    for (int byte = 0; byte < 256; ++byte)
        body += static_cast<char>(byte);
    EXPECT_EQ(BuildRequest("h", body), ExpectedRequest("h", std::to_string(body.size()), body));
}

TEST(RequestTest, BodyOfAMebibyteIsSentAsItIs) {
    const std::string body(1 << 20, '{');
    EXPECT_EQ(BuildRequest("h", body), ExpectedRequest("h", "1048576", body));
}

TEST(RequestTest, WhatLooksLikeAPlaceholderIsSentAsItIs) {
    for (const std::string text : {"${1}", "${2}", "${3}", "${4}", "${5}", "a${1}${2}b", "${${1}}",
                                   "${0}", "${6}", "${10}", "${x}", "${", "$", "${1", "${ 1}"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(BuildRequest("h", text), ExpectedRequest("h", std::to_string(text.size()), text));
        EXPECT_EQ(BuildRequest(text, "x"), ExpectedRequest(text, "1", "x"));
    }
}

/// Replaces the first reference: "$(answer)" by 42, "$(question)" by a reference to the answer,
/// "$(field)" by the placeholder of a field.
void ExpandOnce(std::string& text) {
    for (const auto& [reference, value] : {std::pair<std::string, std::string>{"$(answer)", "42"},
                                           {"$(question)", "$(answer)?"},
                                           {"$(field)", "${1}"}}) {
        const std::size_t hit = text.find(reference);
        if (hit != std::string::npos) {
            text.replace(hit, reference.size(), value);
            return;
        }
    }
}

class RequestExpandedTest : public testing::Test {
protected:
    RequestExpandedTest() { Utilities::FormatProviders::Instance().AddStringProvider(ExpandOnce); }
    ~RequestExpandedTest() override {
        Utilities::FormatProviders::Instance().RemoveStringProvider(ExpandOnce);
    }
};

TEST_F(RequestExpandedTest, LengthIsThatOfTheExpandedBody) {
    EXPECT_EQ(BuildRequest("h", "CLI -1 $(answer)"), ExpectedRequest("h", "9", "CLI -1 42"));
}

TEST_F(RequestExpandedTest, ValueOfAVariableIsNotExpandedAgain) {
    EXPECT_EQ(BuildRequest("h", "CLI -1 $(question)"),
              ExpectedRequest("h", "17", "CLI -1 $(answer)?"));
    EXPECT_EQ(BuildRequest("$(question)", "x"), ExpectedRequest("$(answer)?", "1", "x"));
    EXPECT_EQ(BuildRequest("$(field)", "$(field)"), ExpectedRequest("${1}", "4", "${1}"));
}

} // namespace

} // namespace SarvexTool
