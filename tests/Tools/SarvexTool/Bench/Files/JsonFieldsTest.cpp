#include "Tools/SarvexTool/Bench/Files/JsonFields.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace Bench {
namespace {

using testing::ElementsAre;

/// What is wrong with the value of a key, as one of the functions tells it.
template <typename Value>
std::string ProblemOf(const std::string& value,
                      Value (JsonFields::*read)(const std::string&) const) {
    try {
        (JsonFields::Parse("{\"key\": " + value + "}").*read)("key");
    } catch (const WrongJson& wrong) {
        return wrong.what();
    }
    return "none";
}

TEST(JsonFieldsTest, TextOfAnyBytesComesBackFromOneLineOfAscii) {
    const std::string controls("a\0\n\"\\\x7F", 6);
    const std::string noText = "M\xFCnchen";
    Json json;
    PutText(json, "umlaut", "Grüße");
    PutText(json, "controls", controls);
    PutText(json, "bytes", noText);
    PutTexts(json, "list", {"a", noText, ""});
    const std::string line = LineOf(json);
    EXPECT_EQ(line, "{\"umlaut\":\"Gr\\u00fc\\u00dfe\",\"controls\":\"a\\u0000\\n\\\"\\\\\\u007f\","
                    "\"bytesBase64\":\"TfxuY2hlbg==\","
                    "\"list\":[\"a\",{\"base64\":\"TfxuY2hlbg==\"},\"\"]}\n");
    const JsonFields fields = JsonFields::Parse(line);
    EXPECT_EQ(fields.Text("umlaut"), "Grüße");
    EXPECT_EQ(fields.Text("controls"), controls);
    EXPECT_EQ(fields.Text("bytes"), noText);
    EXPECT_THAT(fields.Texts("list"), ElementsAre("a", noText, ""));
}

TEST(JsonFieldsTest, AKeyIsThereUnlessItIsNull) {
    const JsonFields fields = JsonFields::Parse(R"({"a": 1, "b": null, "cBase64": "Zg=="})");
    EXPECT_TRUE(fields.Has("a"));
    EXPECT_FALSE(fields.Has("b"));
    EXPECT_TRUE(fields.Has("c"));
    EXPECT_FALSE(fields.Has("d"));
}

TEST(JsonFieldsTest, AListOfObjectsHasThemInTheirOrder) {
    const JsonFields fields = JsonFields::Parse(R"({"all": [{"a": 1}, {"a": 2}], "none": []})");
    const std::vector<JsonFields> all = fields.Objects("all");
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0].Count("a"), 1u);
    EXPECT_EQ(all[1].Count("a"), 2u);
    EXPECT_TRUE(fields.Objects("none").empty());
}

TEST(JsonFieldsTest, ValuesOfAnotherTypeAreTold) {
    for (const std::string text : {"1", "[]", "null", "{", "", "{} x", "\xFF"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(JsonFields::Parse(text), WrongJson);
    }
    EXPECT_EQ(ProblemOf("1", &JsonFields::Flag), "the value of \"key\" is neither true nor false");
    EXPECT_EQ(ProblemOf("true", &JsonFields::Text), "the value of \"key\" is no text");
    EXPECT_EQ(ProblemOf("1", &JsonFields::Object), "the value of \"key\" is no object");
    EXPECT_EQ(ProblemOf("\"a\"", &JsonFields::Texts), "the value of \"key\" is no list");
    EXPECT_EQ(ProblemOf("[1]", &JsonFields::Texts), "the value of \"key\" is no text");
    EXPECT_EQ(ProblemOf(R"([{"base64": "!"}])", &JsonFields::Texts),
              "the value of \"key\" is no base64");
    EXPECT_EQ(ProblemOf("{}", &JsonFields::Objects), "the value of \"key\" is no list");
    EXPECT_EQ(ProblemOf("[{}, 1]", &JsonFields::Objects),
              "the value of \"key\" is no list of objects");
    try {
        JsonFields::Parse("{}").Text("key");
        FAIL() << "nothing was thrown";
    } catch (const WrongJson& wrong) {
        EXPECT_STREQ(wrong.what(), "the key \"key\" is missing");
    }
}

TEST(JsonFieldsTest, NumbersThatDoNotFitAreTold) {
    for (const std::string value : {"-1", "1.5", "\"1\"", "18446744073709551616"})
        EXPECT_EQ(ProblemOf(value, &JsonFields::Count), "the value of \"key\" is no count");
    EXPECT_EQ(JsonFields::Parse(R"({"key": 18446744073709551615})").Count("key"),
              18446744073709551615U);
    EXPECT_EQ(ProblemOf("4294967296", &JsonFields::Line),
              "the value of \"key\" is no line's number");
    EXPECT_EQ(JsonFields::Parse(R"({"key": 4294967295})").Line("key"), 4294967295U);
    for (const std::string value : {"2147483648", "-2147483649", "18446744073709551615", "0.5"})
        EXPECT_EQ(ProblemOf(value, &JsonFields::Integer),
                  "the value of \"key\" is no whole number");
    EXPECT_EQ(JsonFields::Parse(R"({"key": -2147483648})").Integer("key"), -2147483647 - 1);
    EXPECT_EQ(JsonFields::Parse(R"({"key": 2147483647})").Integer("key"), 2147483647);
    for (const std::string value : {"-0.5", "\"1\"", "null"})
        EXPECT_EQ(ProblemOf(value, &JsonFields::Seconds),
                  "the value of \"key\" is no number of seconds");
    EXPECT_EQ(JsonFields::Parse(R"({"key": 2})").Seconds("key"), 2);
}

struct Case {
    std::string bytes;
    std::string text;
};

TEST(JsonFieldsBase64Test, BytesBecomeTextAndBytesAgain) {
    // The vectors of RFC 4648, and bytes that are no text.
    for (const Case& each : std::vector<Case>{{"", ""},
                                              {"f", "Zg=="},
                                              {"fo", "Zm8="},
                                              {"foo", "Zm9v"},
                                              {"foob", "Zm9vYg=="},
                                              {"fooba", "Zm9vYmE="},
                                              {"foobar", "Zm9vYmFy"},
                                              {std::string("\0\xFF\xFE\x80", 4), "AP/+gA=="}}) {
        SCOPED_TRACE(each.text);
        EXPECT_EQ(ToBase64(each.bytes), each.text);
        EXPECT_EQ(FromBase64(each.text), each.bytes);
    }
}

TEST(JsonFieldsBase64Test, ATextThatNoBytesBecomeIsRefused) {
    for (const std::string text : {"Z", "Zg", "Zg=", "Zg===", "=", "====", "Zh==", "Zm9=", "Zm 9v",
                                   "Zm9v\n", "Zm9v====", "Z=9v", "Zm9\xFF"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(FromBase64(text), std::nullopt);
    }
}

TEST(JsonFieldsBase64Test, EveryByteComesBack) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    EXPECT_EQ(FromBase64(ToBase64(bytes)), bytes);
}

} // namespace
} // namespace Bench
