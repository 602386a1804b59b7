#include "Tools/SarvexTool/Bench/Output/JsonWriter.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Bench {
namespace {

TEST(JsonWriterTest, PutsCommasBetweenValuesOnly) {
    std::ostringstream stream;
    JsonWriter json(stream);
    json.BeginArray();
    json.BeginObject();
    json.EndObject();
    json.BeginObject();
    json.Key("a").Bool(true);
    json.Key("b").BeginArray();
    json.Count(1);
    json.Null();
    json.EndArray();
    json.Key("c").Text("");
    json.EndObject();
    json.BreakLine();
    json.EndArray();
    json.Finish();
    EXPECT_EQ(stream.str(), "[{}, {\"a\": true, \"b\": [1, null], \"c\": \"\"}\n]\n");
}

TEST(JsonWriterTest, DecimalsKeepAllDigits) {
    std::ostringstream stream;
    JsonWriter json(stream);
    json.BeginArray();
    json.Number(*Decimal::Parse("123456789.123456789"));
    json.Number(*Decimal::Parse("-0.1"));
    json.Number(0.1);
    json.EndArray();
    json.Finish();
    EXPECT_EQ(stream.str(), "[123456789.123456789, -0.1, 0.1]\n");
}

TEST(JsonWriterTest, TextsAreInAsciiSoThatNoneReachesATerminal) {
    std::ostringstream stream;
    JsonWriter json(stream);
    json.BeginArray();
    json.Text("\x1B[31m \x7F \xC2\x9B");
    json.Text("\xE2\x80\xAE \xE2\x80\xA8 \xF3\xA0\x81\x81 \xC3\xA4");
    json.Text("\xFF\xC0\xBC \"\\");
    json.EndArray();
    json.Finish();
    EXPECT_EQ(stream.str(), R"(["\u001b[31m \u007f \u009b", "\u202e \u2028 \udb40\udc41 \u00e4", )"
                            R"("\ufffd\ufffd\ufffd \"\\"]
)");
}

TEST(JsonWriterTest, LargeTextsLoseNothing) {
    std::ostringstream stream;
    JsonWriter json(stream);
    const std::string part(1000, 'x');
    std::string expected = "[";
    json.BeginArray();
    for (int count = 0; count < 200; ++count) {
        json.Text(part);
        expected += (count == 0 ? "\"" : ", \"") + part + "\"";
    }
    json.EndArray();
    json.Finish();
    EXPECT_EQ(stream.str(), expected + "]\n");
}

} // namespace
} // namespace Bench
