#include "Tools/SarvexTool/Bench/Output/Json.h"
#include "tests/Tools/SarvexTool/Bench/Output/OutputFixture.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Bench {
namespace {

TEST(JsonTest, JudgementHoldsEveryMeasurement) {
    OutputFixture fixture;
    std::ostringstream stream;
    WriteJson(stream, fixture.Judged());
    EXPECT_EQ(stream.str(), R"({"form": "judgement", "version": 1,
"result": {"file": "run/result.csv", "countryCode": "US", "configurations": 6, "measurements": 8, "unexpectedPowers": 1},
"limits": "limits.csv",
"passed": false, "counts": {"pass": 3, "tooLow": 1, "tooHigh": 1, "notMeasured": 2, "noLimit": 1}, "worstMargin": -0.5,
"bands": [
{"band": "2.4", "counts": {"pass": 0, "tooLow": 0, "tooHigh": 1, "notMeasured": 0, "noLimit": 0}, "worstMargin": -0.5},
{"band": "5", "counts": {"pass": 3, "tooLow": 1, "tooHigh": 0, "notMeasured": 0, "noLimit": 0}, "worstMargin": -0.25},
{"band": "6", "counts": {"pass": 0, "tooLow": 0, "tooHigh": 0, "notMeasured": 2, "noLimit": 0}, "worstMargin": null},
{"band": "7", "counts": {"pass": 0, "tooLow": 0, "tooHigh": 0, "notMeasured": 0, "noLimit": 1}, "worstMargin": null}
],
"measurements": [
{"line": 2, "chain": "A", "settings": {"Band": "5", "Chains": "AB", "Bandwidth": "80", "Channel": "36", "Rate": "MCS9"}, "power": 12.5, "verdict": "pass", "limit": {"line": 2, "minimum": 12, "maximum": 14}, "margin": 0.5},
{"line": 2, "chain": "B", "settings": {"Band": "5", "Chains": "AB", "Bandwidth": "80", "Channel": "36", "Rate": "MCS9"}, "power": 11.75, "verdict": "too low", "limit": {"line": 2, "minimum": 12, "maximum": 14}, "margin": -0.25},
{"line": 3, "chain": "A", "settings": {"Band": "2.4", "Chains": "A", "Bandwidth": "20", "Channel": "6", "Rate": "MCS9"}, "power": 15, "verdict": "too high", "limit": {"line": 3, "minimum": null, "maximum": 14.5}, "margin": -0.5},
{"line": 4, "chain": "A", "settings": {"Band": "6", "Chains": "A", "Bandwidth": "20", "Channel": "500", "Rate": "MCS9"}, "power": null, "cause": "no power", "reason": "no power was reported", "verdict": "not measured", "limit": {"line": 4, "minimum": null, "maximum": null}, "margin": null},
{"line": 5, "chain": "A", "settings": {"Band": "6", "Chains": "A", "Bandwidth": "20", "Channel": "1", "Rate": "MCS9"}, "power": null, "cause": "uncertain", "reason": "Band is uncertain since line 4", "verdict": "not measured", "limit": {"line": 4, "minimum": null, "maximum": null}, "margin": null},
{"line": 6, "chain": "B", "settings": {"Band": "7", "Chains": "B", "Bandwidth": "20", "Channel": "1", "Rate": "MCS9"}, "power": 1, "verdict": "no limit", "limit": null, "margin": null},
{"line": 7, "chain": "A", "settings": {"Band": "5", "Chains": "AB", "Bandwidth": "80", "Channel": "36", "Rate": "MCS9"}, "power": 13, "verdict": "pass", "limit": {"line": 2, "minimum": 12, "maximum": 14}, "margin": 1},
{"line": 7, "chain": "B", "settings": {"Band": "5", "Chains": "AB", "Bandwidth": "80", "Channel": "36", "Rate": "MCS9"}, "power": 13, "verdict": "pass", "limit": {"line": 2, "minimum": 12, "maximum": 14}, "margin": 1}
]
}
)");
}

TEST(JsonTest, RunThatEndedEarlyHasNotPassed) {
    OutputFixture fixture;
    fixture.JudgeEarlyEnd();
    std::ostringstream stream;
    WriteJson(stream, fixture.Judged());
    EXPECT_NE(stream.str().find(
                  R"("unexpectedPowers": 0, "endedEarly": {"linesDone": 1, "linesTotal": 5}},
"limits": "limits.csv",
"passed": false, "counts": {"pass": 1, )"),
              std::string::npos)
        << stream.str();
}

TEST(JsonTest, ComparedRunThatEndedEarlyIsTold) {
    OutputFixture fixture;
    fixture.run.earlyEnd = EarlyEnd{6, std::nullopt};
    std::ostringstream stream;
    WriteJson(stream, fixture.Compared());
    EXPECT_NE(stream.str().find(R"("endedEarly": {"linesDone": 6, "linesTotal": null}},
"tolerance")"),
              std::string::npos)
        << stream.str();
}

TEST(JsonTest, CauseIsThatOfTheJournal) {
    OutputFixture fixture;
    fixture.JudgeRefusal("\x1B\xFF");
    std::ostringstream stream;
    WriteJson(stream, fixture.Judged());
    EXPECT_NE(
        stream.str().find(R"("power": null, "cause": "refused", "reason": "the daemon refused )"
                          R"(the line: \u001b\ufffd", "verdict": "not measured")"),
        std::string::npos)
        << stream.str();
}

TEST(JsonTest, ComparisonHoldsTheDifferences) {
    OutputFixture fixture;
    std::ostringstream stream;
    WriteJson(stream, fixture.Compared());
    EXPECT_EQ(stream.str(), R"({"form": "comparison", "version": 1,
"old": {"file": "old.csv", "countryCode": null, "configurations": 3, "measurements": 4, "unexpectedPowers": 0},
"new": {"file": "run/result.csv", "countryCode": "US", "configurations": 6, "measurements": 8, "unexpectedPowers": 1},
"tolerance": 0.5, "alike": false, "pairs": 4, "noise": null,
"shifts": [
{"band": "2.4", "rate": "MCS9", "pairs": 1, "mean": 0.75},
{"band": "5", "rate": "MCS9", "pairs": 2, "mean": -0.375}
],
"differences": [
{"kind": "changed", "chain": "A", "settings": {"Band": "2.4", "Chains": "A", "Bandwidth": "20", "Channel": "6", "Rate": "MCS9"}, "old": {"line": 2, "power": 14.25}, "new": {"line": 3, "power": 15}, "change": 0.75, "withinNoise": false},
{"kind": "changed", "chain": "B", "settings": {"Band": "5", "Chains": "AB", "Bandwidth": "80", "Channel": "36", "Rate": "MCS9"}, "old": {"line": 4, "power": 12.5}, "new": {"line": 2, "power": 11.75}, "change": -0.75, "withinNoise": false},
{"kind": "measuredInOldOnly", "chain": "A", "settings": {"Band": "6", "Chains": "A", "Bandwidth": "20", "Channel": "500", "Rate": "MCS9"}, "old": {"line": 3, "power": 9}, "new": {"line": 4, "power": null, "cause": "no power", "reason": "no power was reported"}, "change": null, "withinNoise": false},
{"kind": "inNewOnly", "chain": "A", "settings": {"Band": "6", "Chains": "A", "Bandwidth": "20", "Channel": "1", "Rate": "MCS9"}, "old": null, "new": {"line": 5, "power": null, "cause": "uncertain", "reason": "Band is uncertain since line 4"}, "change": null, "withinNoise": false},
{"kind": "inNewOnly", "chain": "B", "settings": {"Band": "7", "Chains": "B", "Bandwidth": "20", "Channel": "1", "Rate": "MCS9"}, "old": null, "new": {"line": 6, "power": 1}, "change": null, "withinNoise": false},
{"kind": "inNewOnly", "chain": "A", "settings": {"Band": "5", "Chains": "AB", "Bandwidth": "80", "Channel": "36", "Rate": "MCS9"}, "old": null, "new": {"line": 7, "power": 13}, "change": null, "withinNoise": false},
{"kind": "inNewOnly", "chain": "B", "settings": {"Band": "5", "Chains": "AB", "Bandwidth": "80", "Channel": "36", "Rate": "MCS9"}, "old": null, "new": {"line": 7, "power": 13}, "change": null, "withinNoise": false}
]
}
)");
}

TEST(JsonTest, AnyBytesOfACellMakeValidJson) {
    OutputFixture fixture;
    fixture.JudgeChannel(std::string_view("\"\\\x1B\xFF\0", 5));
    std::ostringstream stream;
    WriteJson(stream, fixture.Judged());
    EXPECT_NE(stream.str().find("\"Channel\": \"\\\"\\\\\\u001b\\ufffd\\u0000\""),
              std::string::npos)
        << stream.str();
}

TEST(JsonTest, JudgementHoldsThePlacesAndTheirCounts) {
    OutputFixture fixture;
    fixture.TellPlaces();
    JudgedRun judged = fixture.Judged();
    judged.groupBy = PlacePart::Device;
    std::ostringstream stream;
    WriteJson(stream, judged);
    for (const char* const part :
         {R"(
],
"groupBy": "device", "groups": [
{"name": null, "counts": {"pass": 2, "tooLow": 0, "tooHigh": 1, "notMeasured": 2, "noLimit": 1}, "worstMargin": -0.5},
{"name": "DUT", "counts": {"pass": 1, "tooLow": 1, "tooHigh": 0, "notMeasured": 0, "noLimit": 0}, "worstMargin": -0.25}
],
"measurements": [
)",
          R"("margin": 0.5, "bench": "=b\u001b", "device": "DUT", "attempt": 2},
)",
          R"("margin": -0.5, "bench": "a", "attempt": 10},
)",
          R"("verdict": "no limit", "limit": null, "margin": null},
)"})
        EXPECT_NE(stream.str().find(part), std::string::npos) << part << stream.str();
}

TEST(JsonTest, ComparisonHoldsThePlacesAndTheirShifts) {
    OutputFixture fixture;
    fixture.TellPlaces();
    ComparedRuns compared = fixture.Compared();
    compared.groupBy = PlacePart::Bench;
    std::ostringstream stream;
    WriteJson(stream, compared);
    for (
        const char* const part :
        {R"(
],
"groupBy": "bench", "groupShifts": [
{"name": "=b\u001b", "pairs": 2, "mean": -0.375},
{"name": "a", "pairs": 1, "mean": 0.75}
],
"differences": [
)",
         R"("old": {"line": 2, "power": 14.25}, "new": {"line": 3, "power": 15, "bench": "a", "attempt": 10}, )"})
        EXPECT_NE(stream.str().find(part), std::string::npos) << part << stream.str();
}

} // namespace
} // namespace Bench
