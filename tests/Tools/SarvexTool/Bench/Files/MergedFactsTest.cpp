#include "Tools/SarvexTool/Bench/Files/MergedFacts.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<ManifestChunk> chunks{{"chunk-0001.csv", "aa", {2, 4}},
                                        {"chunk-0002.csv", "bb", {5, 6}}};

RunFolder RunOf(const std::string& name, const std::string& started, const std::string& ended) {
    RunFacts facts;
    facts.daemon = name + ":81";
    facts.place.bench = "bench of " + name;
    facts.started = started;
    facts.ended = ended;
    facts.macType = 4;
    facts.countryCode = "DE";
    facts.clientSha256 = "cc";
    facts.startPassedOn = true;
    facts.stopConfirmed = true;
    facts.outcome = "complete";
    return {name, facts};
}

/// Both chunks have a complete run; the second one has ended before the first one began.
class MergedFactsTest : public testing::Test {
protected:
    RunFacts Merged() const { return MergedFacts(chunks, runs, choice); }

    std::vector<RunFolder> runs{RunOf("one", "2026-03-09T09:00", "2026-03-09T10:00"),
                                RunOf("two", "2026-03-09T07:00", "2026-03-09T08:00")};
    ChunkChoice choice{{{{0, 3}}, {{1, 2}}}, {}, 2};
};

TEST_F(MergedFactsTest, LastFromTheFirstStartToTheLastEnd) {
    const RunFacts facts = Merged();
    EXPECT_EQ(facts.started, "2026-03-09T07:00");
    EXPECT_EQ(facts.ended, "2026-03-09T10:00");
    EXPECT_EQ(facts.outcome, "complete");
    EXPECT_TRUE(facts.isMerged);
    EXPECT_EQ(facts.place, RunPlace());
    EXPECT_THAT(facts.notes, IsEmpty());
    EXPECT_TRUE(facts.startPassedOn);
    EXPECT_TRUE(facts.stopConfirmed);
}

TEST_F(MergedFactsTest, EachRunIsASourceOfItsLines) {
    const RunFacts& one = runs[0].facts;
    const RunFacts& two = runs[1].facts;
    EXPECT_THAT(
        Merged().sources,
        ElementsAre(
            RunSource{{2, 4}, "one", one.place, "one:81", 4, "DE", one.started, one.ended},
            RunSource{{5, 6}, "two", two.place, "two:81", 4, "DE", two.started, two.ended}));
    EXPECT_THAT(Merged().otherAttempts, IsEmpty());
}

TEST_F(MergedFactsTest, OfARunThatEndedEarlyTheLinesThatItHas) {
    runs[0].facts.outcome = "interrupted";
    runs[0].facts.stopConfirmed = false;
    choice = {{{{0, 1}}, std::nullopt}, {{1, 1, 0}}, 0};
    const RunFacts facts = Merged();
    ASSERT_EQ(facts.sources.size(), 1u);
    EXPECT_EQ(facts.sources[0].lines.first, 2u);
    EXPECT_EQ(facts.sources[0].lines.last, 2u);
    EXPECT_EQ(facts.outcome, "partial");
    EXPECT_FALSE(facts.stopConfirmed);
    ASSERT_EQ(facts.otherAttempts.size(), 1u);
    EXPECT_EQ(facts.otherAttempts[0].run.directory, "two");
    EXPECT_EQ(facts.otherAttempts[0].run.lines.first, 5u);
    EXPECT_EQ(facts.otherAttempts[0].run.lines.last, 6u);
    EXPECT_EQ(facts.otherAttempts[0].linesDone, 0u);
    EXPECT_EQ(facts.otherAttempts[0].outcome, "complete");
}

TEST_F(MergedFactsTest, WhatDiffersFromTheFirstLinesIsNoted) {
    runs[1].facts.macType = 16;
    runs[1].facts.countryCode.reset();
    runs[1].facts.clientSha256 = "dd";
    runs[1].facts.options.firstCommand = {"-wifi-power"};
    const RunFacts facts = Merged();
    EXPECT_EQ(facts.macType, 4);
    EXPECT_EQ(facts.countryCode, "DE");
    const std::string tells = " (two)";
    EXPECT_THAT(
        facts.notes,
        ElementsAre(
            "1 of the 2 runs had another MAC type than that of the first lines" + tells,
            "1 of the 2 runs had another country code than that of the first lines" + tells,
            "1 of the 2 runs were made with another client than that of the first lines" + tells,
            "1 of the 2 runs had another first command than that of the first lines" + tells,
            "1 of the 2 runs had a first command that the daemon did not accept" + tells));
}

TEST_F(MergedFactsTest, AFirstCommandThatWasRefusedIsThatOfTheWhole) {
    runs[0].facts.options.firstCommand = {"-wifi-power"};
    runs[0].facts.options.firstCommandAccepted = true;
    EXPECT_TRUE(Merged().options.firstCommandAccepted);
    runs[1].facts.options.firstCommand = {"-wifi-mode"};
    EXPECT_FALSE(Merged().options.firstCommandAccepted);
    EXPECT_THAT(Merged().options.firstCommand, ElementsAre("-wifi-mode"));
}

TEST_F(MergedFactsTest, AnotherFirstCommandThanThatOfTheFirstLinesIsNoted) {
    for (RunFolder& run : runs) {
        run.facts.options.firstCommand = {"-wifi-bandwidth", "20"};
        run.facts.options.firstCommandAccepted = true;
    }
    EXPECT_THAT(Merged().notes, IsEmpty());
    runs[1].facts.options.firstCommand.back() = "40";
    EXPECT_THAT(Merged().notes, ElementsAre("1 of the 2 runs had another first command than that "
                                            "of the first lines (two)"));
    EXPECT_THAT(Merged().options.firstCommand, ElementsAre("-wifi-bandwidth", "20"));
    runs[1].facts.options.firstCommand.clear();
    EXPECT_EQ(Merged().notes.size(), 1u);
}

TEST_F(MergedFactsTest, AStopThatWasNotConfirmedIsNoted) {
    runs[0].facts.stopConfirmed = false;
    EXPECT_THAT(Merged().notes, ElementsAre("the last stop was not confirmed, so that the "
                                            "transmitter may have stayed on (one)"));
    runs[1].facts.stopConfirmed = false;
    EXPECT_THAT(Merged().notes, ElementsAre("the last stop was not confirmed, so that the "
                                            "transmitter may have stayed on (one and 1 more)"));
    runs[0].facts.startPassedOn = runs[1].facts.startPassedOn = false;
    EXPECT_THAT(Merged().notes, IsEmpty()) << "nothing was ever on";
}

TEST_F(MergedFactsTest, AStopOfAnAttemptThatIsNotUsedIsNotedToo) {
    runs[1].facts.stopConfirmed = false;
    runs[1].facts.ended = "2026-03-09T08:05:00Z";
    choice = {{{{0, 3}}, std::nullopt}, {{1, 1, 0}}, 1};
    EXPECT_THAT(Merged().notes, ElementsAre("the last stop was not confirmed, so that the "
                                            "transmitter may have stayed on (two)"));
    runs[1].facts.ended.reset();
    EXPECT_THAT(Merged().notes, ElementsAre("an attempt went on at the merge, or was killed; its "
                                            "last stop was not confirmed by then (two)"));
}

TEST_F(MergedFactsTest, ARunThatGoesOnHasNotMissedItsStop) {
    runs[1].facts.stopConfirmed = false;
    runs[1].facts.ended.reset();
    choice = {{{{0, 3}}, {{1, 1}}}, {}, 1};
    EXPECT_THAT(Merged().notes, ElementsAre("an attempt went on at the merge, or was killed; its "
                                            "last stop was not confirmed by then (two)"));
}

TEST_F(MergedFactsTest, TheFirmwareOfAllRunsIsThatOfTheWhole) {
    runs[0].facts.firmware = "2.1";
    runs[1].facts.firmware = "2.1";
    EXPECT_EQ(Merged().firmware, "2.1");
    runs[1].facts.firmware = "2.2";
    const RunFacts facts = Merged();
    EXPECT_EQ(facts.firmware, std::nullopt);
    EXPECT_THAT(facts.notes, ElementsAre("the runs were not all measured with the same firmware"));
}

TEST_F(MergedFactsTest, WhatWasWantedOfThePartsIsNotWantedOfTheWhole) {
    runs[0].facts.note = "only chunk 1";
    runs[0].facts.options.keep = true;
    runs[0].facts.options.store = "lab.db";
    const RunFacts facts = Merged();
    EXPECT_EQ(facts.note, std::nullopt);
    EXPECT_EQ(facts.options, RunOptions());
}

TEST_F(MergedFactsTest, NotesOfTheRunsAreKeptOnce) {
    runs[0].facts.notes = {"the daemon closes idle connections"};
    runs[1].facts.notes = {"the daemon closes idle connections", "the client changed"};
    runs[1].facts.closesIdleConnections = true;
    EXPECT_THAT(Merged().notes, ElementsAre("the daemon closes idle connections (one and 1 more)",
                                            "the client changed (two)"));
    EXPECT_TRUE(Merged().closesIdleConnections);
}

TEST_F(MergedFactsTest, OfNoRunThereIsNothingToTell) {
    choice = {{std::nullopt, std::nullopt}, {}, 0};
    const RunFacts facts = Merged();
    EXPECT_THAT(facts.sources, IsEmpty());
    EXPECT_EQ(facts.started, "");
    EXPECT_EQ(facts.outcome, "partial");
}

} // namespace
} // namespace Bench
