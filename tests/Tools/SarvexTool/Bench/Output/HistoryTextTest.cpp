#include "Tools/SarvexTool/Bench/Output/HistoryText.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Bench {
namespace {

KeptFacts FullFacts() {
    KeptFacts facts;
    facts.hash = "1a2b3c4d5e6f";
    facts.keptAt = 1'773'043'600;
    facts.measuredAt = 1'773'043'500;
    facts.name = "short.csv";
    facts.testFileSha256 = "ab";
    facts.bench = "bench 1";
    facts.device = "DUT\x1b";
    facts.firmware = "2.1";
    facts.note = "after the repair";
    facts.user = "mia";
    facts.host = "pc7";
    facts.daemon = "127.0.0.1:81";
    facts.macType = -3;
    facts.countryCode = "DE";
    facts.outcome = "complete";
    facts.verdict = KeptVerdict::Pass;
    facts.lines = 2;
    facts.measurements = 3;
    facts.measured = 2;
    facts.parts = {{"bench 1", "DUT\x1b", 2}};
    return facts;
}

KeptFacts MergedFacts() {
    KeptFacts facts;
    facts.hash = "00000000ff";
    facts.name = "long.csv";
    facts.parts = {{"bench 1", std::nullopt, 1}, {"bench 2", std::nullopt, 1}};
    return facts;
}

TEST(HistoryTextTest, ARunIsCalledByNameTimeAndBench) {
    EXPECT_EQ(PhraseOf(FullFacts()),
              "short.csv, measured 2026-03-09 08:05 UTC on bench 1 (1a2b3c4d)");
    EXPECT_EQ(PhraseOf(MergedFacts()),
              "long.csv, measured 1970-01-01 00:00 UTC on several (00000000)");
    KeptFacts facts;
    facts.name = "\x1b[2J";
    EXPECT_EQ(PhraseOf(facts), "\\x1B[2J, measured 1970-01-01 00:00 UTC ()");
}

TEST(HistoryTextTest, WhatIsAddedIsCounted) {
    std::ostringstream stream;
    PrintAdded(stream, FullFacts(), true);
    PrintAdded(stream, FullFacts(), false);
    EXPECT_EQ(stream.str(),
              "Kept short.csv, measured 2026-03-09 08:05 UTC on bench 1 (1a2b3c4d): 3 "
              "measurements, 2 measured, verdict pass.\n"
              "Kept already: short.csv, measured 2026-03-09 08:05 UTC on bench 1 (1a2b3c4d).\n");
}

TEST(HistoryTextTest, RunsAreATable) {
    std::ostringstream stream;
    PrintRuns(stream, {FullFacts(), MergedFacts()}, {{"golden", "1a2b3c4d5e6f"}, {"x", "none"}});
    EXPECT_EQ(stream.str(),
              "Run       Measured (UTC)    Name       Bench    Device   Firmware  Verdict     "
              "Baseline  Powers\n"
              "1a2b3c4d  2026-03-09 08:05  short.csv  bench 1  DUT\\x1B  2.1       pass        "
              "golden    2 of 3\n"
              "00000000  1970-01-01 00:00  long.csv   several  -        -         not judged  "
              "          0 of 0\n"
              "2 runs.\n");
}

TEST(HistoryTextTest, ThatThereIsNoRunIsSaid) {
    std::ostringstream stream;
    PrintRuns(stream, {}, {});
    PrintBaselines(stream, {}, {});
    EXPECT_EQ(stream.str(), "No such run is kept.\nThere is no baseline.\n");
}

TEST(HistoryTextTest, ARunIsShownWithAllThatIsTold) {
    std::ostringstream stream;
    PrintRun(stream, FullFacts(), {{"result.csv", 120, "cd"}}, {{"golden", "1a2b3c4d5e6f"}});
    EXPECT_EQ(stream.str(), "Run:             1a2b3c4d5e6f\n"
                            "Baseline:        golden\n"
                            "Name:            short.csv\n"
                            "Measured:        2026-03-09T08:05:00Z\n"
                            "Kept:            2026-03-09T08:06:40Z\n"
                            "Place:           bench bench 1, device DUT\\x1B, attempt 2\n"
                            "Firmware:        2.1\n"
                            "Note:            after the repair\n"
                            "User:            mia\n"
                            "Host:            pc7\n"
                            "Daemon:          127.0.0.1:81\n"
                            "MAC type:        -3\n"
                            "Country code:    DE\n"
                            "Test file:       ab\n"
                            "Outcome:         complete\n"
                            "Verdict:         pass\n"
                            "Lines:           2\n"
                            "Powers:          2 of 3 measurements\n"
                            "\n"
                            "File        Bytes\n"
                            "result.csv    120\n");
}

TEST(HistoryTextTest, WhatIsNotKnownIsLeftOut) {
    std::ostringstream stream;
    PrintRun(stream, MergedFacts(), {}, {});
    EXPECT_EQ(stream.str(), "Run:             00000000ff\n"
                            "Name:            long.csv\n"
                            "Measured:        1970-01-01T00:00:00Z\n"
                            "Kept:            1970-01-01T00:00:00Z\n"
                            "Part:            bench bench 1, device -, attempt 1\n"
                            "Part:            bench bench 2, device -, attempt 1\n"
                            "Verdict:         not judged\n"
                            "Lines:           0\n"
                            "Powers:          0 of 0 measurements\n"
                            "\n"
                            "File  Bytes\n");
}

TEST(HistoryTextTest, BaselinesAreATable) {
    std::ostringstream stream;
    PrintBaselines(stream, {{"golden", "1a2b3c4d5e6f"}, {"gone", "none"}}, {FullFacts()});
    EXPECT_EQ(stream.str(),
              "Baseline  Run       Measured (UTC)    Name       Bench    Device   Firmware  "
              "Verdict\n"
              "golden    1a2b3c4d  2026-03-09 08:05  short.csv  bench 1  DUT\\x1B  2.1       "
              "pass\n");
}

} // namespace
} // namespace Bench
