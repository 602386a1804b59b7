#include "Tools/SarvexTool/Bench/Output/HistoryJson.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Bench {
namespace {

KeptFacts FullFacts() {
    KeptFacts facts;
    facts.hash = "1a2b";
    facts.keptAt = 1'773'043'600;
    facts.measuredAt = 1'773'043'500;
    facts.name = "short.csv";
    facts.bench = "bench \"1\"";
    facts.macType = -3;
    facts.verdict = KeptVerdict::Fail;
    facts.lines = 2;
    facts.measurements = 3;
    facts.measured = 2;
    facts.parts = {{"bench \"1\"", std::nullopt, 2}};
    return facts;
}

const char* const factsOfIt =
    R"("hash": "1a2b", "name": "short.csv", "measuredAt": "2026-03-09T08:05:00Z", )"
    R"("keptAt": "2026-03-09T08:06:40Z", "bench": "bench \"1\"", "device": null, )"
    R"("parts": [{"bench": "bench \"1\"", "device": null, "attempt": 2}], "firmware": null, "note": null, )"
    R"("user": null, "host": null, "daemon": null, "macType": -3, "countryCode": null, )"
    R"("testFileSha256": null, "outcome": null, "verdict": "fail", "lines": 2, "measurements": 3, )"
    R"("measured": 2, "baselines": ["golden"])";

/// Without the breaks of lines.
std::string Flat(std::string text) {
    std::erase(text, '\n');
    return text;
}

TEST(HistoryJsonTest, RunsHaveAllThatIsTold) {
    std::ostringstream stream;
    WriteRunsJson(stream, {FullFacts()}, {{"golden", "1a2b"}, {"other", "ff"}});
    EXPECT_EQ(Flat(stream.str()), std::string(R"({"version": 1, "runs": [{)") + factsOfIt + "}]}");
}

TEST(HistoryJsonTest, WithoutRunsTheListIsEmpty) {
    std::ostringstream stream;
    WriteRunsJson(stream, {}, {});
    EXPECT_EQ(Flat(stream.str()), R"({"version": 1, "runs": []})");
}

TEST(HistoryJsonTest, ARunHasItsFiles) {
    std::ostringstream stream;
    WriteRunJson(stream, FullFacts(), {{"result.csv", 120, "cd"}}, {{"golden", "1a2b"}});
    EXPECT_EQ(Flat(stream.str()),
              std::string(R"({"version": 1, )") + factsOfIt +
                  R"(, "files": [{"name": "result.csv", "size": 120, "sha256": "cd"}]})");
}

TEST(HistoryJsonTest, BaselinesHaveTheirRuns) {
    std::ostringstream stream;
    WriteBaselinesJson(stream, {{"golden", "1a2b"}});
    EXPECT_EQ(Flat(stream.str()),
              R"({"version": 1, "baselines": [{"name": "golden", "run": "1a2b"}]})");
}

} // namespace
} // namespace Bench
