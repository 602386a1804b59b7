#include "Tools/SarvexTool/Bench/Output/TrendConclusion.h"
#include "Tools/SarvexTool/Bench/Output/TrendPhrases.h"
#include "tests/Tools/SarvexTool/Bench/Core/TrendFixture.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

using testing::ElementsAre;

class TrendConclusionTest : public testing::Test, protected TrendFixture {
protected:
    TrendConclusion Conclusion(const std::vector<const Limit*>* limits = nullptr) const {
        return ConclusionOf(data, TrendOf(data, limits));
    }

    /// The first sentence with its word.
    std::string FirstLine() const {
        const TrendConclusion conclusion = Conclusion();
        return conclusion.word + ": " + conclusion.sentences.front();
    }

    /// Thirty runs of which one reads another power.
    void AddWavesWith(const std::string& name, double power) {
        std::vector<double> powers;
        for (int run = 0; run < 15; ++run)
            powers.insert(powers.end(), {10.5, 10.6});
        powers[15] = power;
        AddRuns(AddStation(name), powers);
    }

    void AddSteadyAB() {
        AddSteady("A", 10);
        AddSteady("B", 11);
    }
};

const std::string chance =
    "of 1000 runs of a steady station, about 3 are beyond its control limits by chance";

TEST_F(TrendConclusionTest, FirstLineNamesTheDriftingStationByHowMuchAndSinceWhen) {
    AddDriftOfC();
    const TrendConclusion conclusion = Conclusion();
    EXPECT_EQ(conclusion.word, "DRIFT");
    // The eighth run of C is the 24th run, and there is one a day from 2026-03-02 on.
    EXPECT_THAT(conclusion.sentences,
                ElementsAre("C reads 2.00 dB higher since 2026-03-25; 3 of its 10 runs are beyond "
                            "its control limits"));
}

TEST_F(TrendConclusionTest, DriftThatIsOverIsToldFromItsFirstDayToItsLast) {
    AddSteadyAB();
    AddRuns(AddStation("C"),
            {10.5, 10.6, 10.5, 10.6, 10.5, 5, 5, 10.5, 10.6, 10.5, 10.6, 10.5, 10.6, 10.5, 10.6});
    EXPECT_EQ(Conclusion().word, "STEADY") << "now";
    EXPECT_EQ(Conclusion().sentences.at(1),
              "C read 5.50 dB lower from 2026-03-23 to 2026-03-24; 2 of its 15 runs are beyond its "
              "control limits");
    EXPECT_THAT(Conclusion().sentences, testing::Not(testing::Contains(chance)));
}

TEST_F(TrendConclusionTest, RunsBeyondBeforeTheDriftAreToldApart) {
    AddSteadyAB();
    const std::uint32_t rising = AddStation("C");
    for (int run = 0; run < 12; ++run)
        AddRun(rising, {10.5 + 0.1 * run});
    EXPECT_EQ(FirstLine(), "DRIFT: C reads 0.60 dB higher since 2026-03-27; 6 of its 12 runs are "
                           "beyond its control limits, 3 of them before");
}

TEST_F(TrendConclusionTest, RunsBeyondAfterTheDriftAreToldApart) {
    AddSteadyAB();
    AddRuns(AddStation("C"),
            {11.5, 11.5, 11.5, 10.5, 10.5, 10.5, 10.5, 10.44, 10.5, 10.5, 10.5, 10.5});
    EXPECT_EQ(
        Conclusion().sentences.at(1),
        "C read 1.00 dB higher from 2026-03-18 to 2026-03-20; 4 of its 12 runs are beyond its "
        "control limits, 1 of them after");
}

TEST_F(TrendConclusionTest, RunsBeyondBeforeAndAfterTheDriftAreToldTogether) {
    AddSteadyAB();
    AddRuns(AddStation("C"), {10.3, 10.5, 10.5, 10.5, 11.5, 11.5, 11.5, 11.5, 11.5, 10.5,
                              10.5, 10.5, 10.5, 10.5, 10.3, 10.5, 10.5, 10.5, 10.5, 10.5});
    EXPECT_EQ(
        Conclusion().sentences.at(1),
        "C read 1.00 dB higher from 2026-03-22 to 2026-03-26; 7 of its 20 runs are beyond its "
        "control limits, 1 of them before and 1 after");
}

TEST_F(TrendConclusionTest, OneRunAloneBeyondIsToldWithItsDayAndWithWhatChanceDoes) {
    AddWavesWith("C", 10.93);
    AddSteadyAB();
    const TrendConclusion conclusion = Conclusion();
    EXPECT_EQ(conclusion.word, "STEADY") << "such a run is no drift";
    EXPECT_THAT(
        conclusion.sentences,
        ElementsAre("none of the 3 stations drifts: 46 runs, 1 measurement that stations share, "
                    "limits at most 0.26 dB from the mean (C), offsets from -0.56 dB (A) to +0.44 "
                    "dB (B)",
                    "C read 0.43 dB higher on 2026-03-17; 1 of its 30 runs is beyond its control "
                    "limits; the limits leave out 1 lone run",
                    chance));
}

TEST_F(TrendConclusionTest, WhatIsFartherThanByChanceIsNotSaidToBeChance) {
    AddSteadyAB();
    AddWavesWith("C", 15);
    EXPECT_THAT(Conclusion().sentences.at(1), testing::StartsWith("C read 4.50 dB higher on "));
    EXPECT_THAT(Conclusion().sentences, testing::Not(testing::Contains(chance)));
}

TEST_F(TrendConclusionTest, RunAloneBeyondIsToldAfterTheDriftOfAnotherStation) {
    AddDriftOfC();
    AddWavesWith("D", 10.93);
    const TrendConclusion conclusion = Conclusion();
    EXPECT_EQ(conclusion.word, "DRIFT");
    ASSERT_GE(conclusion.sentences.size(), 3U);
    EXPECT_THAT(conclusion.sentences[0], testing::StartsWith("C reads "));
    EXPECT_THAT(conclusion.sentences[1], testing::StartsWith("D read "));
    EXPECT_EQ(conclusion.sentences[2], chance);
}

TEST_F(TrendConclusionTest, RunsOfSeveralDevicesAreNeverSteady) {
    AddSteadyAB();
    AddSteady("C", 10.5);
    data.stations[0].devices.emplace_back("DUT D");
    data.stations[2].devices.emplace_back("DUT D");
    data.stations[1].firmwares = {"1.4", "1.5"};
    const TrendConclusion conclusion = Conclusion();
    EXPECT_EQ(conclusion.word, "MIXED RUNS");
    EXPECT_THAT(conclusion.sentences,
                ElementsAre("runs of several devices are mixed, which can hide a drift or look "
                            "like one (A, C); choose one with --device",
                            "runs of several firmwares are mixed, which can hide a drift or look "
                            "like one (B); choose one with --firmware"));
    EXPECT_FALSE(TrendOf(data).IsFine());
}

TEST_F(TrendConclusionTest, StationThatIsNotFollowedIsToldFirst) {
    AddItems(2);
    AddSteadyAB();
    AddSteady("C", 10.5);
    AddRun(2, {None, 10});
    data.visits.back().measuredAt += 9 * Day;
    EXPECT_EQ(Conclusion().word, "NOT FOLLOWED");
    EXPECT_THAT(
        Conclusion().sentences,
        ElementsAre("C has measured nothing that counts since 2026-03-25, though it has run since",
                    "1 of 25 powers takes no part, because only one station has measured such a "
                    "one"));
    AddRuns(1, {11, 14});
    data.visits.back().measuredAt += 9 * Day;
    EXPECT_EQ(Conclusion().word, "DRIFT");
    EXPECT_THAT(Conclusion().sentences,
                testing::Contains(testing::StartsWith("C has measured nothing that counts")));
}

TEST_F(TrendConclusionTest, StationWithoutRunsForLongIsToldBesideTheConclusion) {
    AddSteadyAB();
    AddSteady("C", 10.5);
    data.visits.back().measuredAt += 20 * Day;
    EXPECT_EQ(Conclusion().word, "STEADY");
    EXPECT_EQ(Conclusion().sentences.at(1), "A has no run since 2026-03-09");
}

TEST_F(TrendConclusionTest, GroupsAreTold) {
    AddItems(2);
    for (const char* const name : {"A", "B", "C", "D"})
        AddStation(name);
    for (int run = 0; run < 8; ++run) {
        for (std::uint32_t station = 0; station < 4; ++station)
            AddRun(station,
                   station < 2 ? std::vector<double>{10, None} : std::vector<double>{None, 10});
    }
    EXPECT_THAT(Conclusion().sentences,
                ElementsAre("none of the 4 stations drifts: 32 runs, 2 measurements that stations "
                            "share, limits at most 0.01 dB from the mean (A)",
                            "2 groups of stations share nothing with each other, so that offsets "
                            "compare only within a group",
                            "of a group of two stations the offsets cannot tell which of them is "
                            "wrong"));
}

TEST_F(TrendConclusionTest, StationThatSharesNothingIsNotSaidToHaveTooFewRuns) {
    AddItems(2);
    AddSteadyAB();
    AddSteady("C", 10);
    const std::uint32_t alone = AddStation("D");
    for (int run = 0; run < 9; ++run)
        AddRun(alone, {None, 10});
    EXPECT_EQ(FirstLine(), "TOO FEW RUNS: nothing that another station has measured: D");
    AddRun(AddStation("E"), {10});
    EXPECT_EQ(FirstLine(), "TOO FEW RUNS: too few runs for control limits, which need 8: E (1); "
                           "nothing that another station has measured: D");
}

TEST_F(TrendConclusionTest, RunsOfSeveralFirmwaresAreToldAfterADrift) {
    AddDriftOfC();
    data.stations[0].firmwares = {"1.4", "1.5"};
    EXPECT_EQ(Conclusion().word, "DRIFT");
    EXPECT_THAT(Conclusion().sentences.at(1),
                testing::HasSubstr("(A); choose one with --firmware"));
}

TEST_F(TrendConclusionTest, StationsThatDriftAreAllTold) {
    AddSteady("A", 10);
    for (const char* const name : {"B", "C"})
        AddRuns(AddStation(name), {10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 14});
    const std::vector<std::string> sentences = Conclusion().sentences;
    ASSERT_EQ(sentences.size(), 2U);
    EXPECT_THAT(sentences[0], testing::StartsWith("B reads 4.00 dB higher since "));
    EXPECT_THAT(sentences[1], testing::StartsWith("C reads 4.00 dB higher since "));
}

TEST_F(TrendConclusionTest, LastRunAloneMayBeByChanceToo) {
    AddSteadyAB();
    AddWavesWith("C", 10.6);
    AddRuns(2, {10.93});
    EXPECT_EQ(Conclusion().word, "DRIFT");
    EXPECT_THAT(Conclusion().sentences, testing::Contains(chance));
}

TEST_F(TrendConclusionTest, StationsThatAllReadHigherAreToldTogether) {
    for (const char* const name : {"A", "B", "C"})
        AddRuns(AddStation(name), {10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 14});
    EXPECT_EQ(Conclusion().sentences.at(3),
              "all 3 stations read higher: what they measure may have changed");
}

TEST_F(TrendConclusionTest, WideLimitsAreTold) {
    for (const char* const name : {"A", "B", "C"})
        AddRuns(AddStation(name), {10, 10.5, 10, 10.5, 10, 10.5, 10, 10.5});
    EXPECT_EQ(Conclusion().word, "STEADY");
    EXPECT_EQ(Conclusion().sentences.at(1),
              "a drift of less than its wide limits does not show: A (1.33 dB), B (1.33 dB), C "
              "(1.33 dB)");
}

TEST_F(TrendConclusionTest, SteadyStationsAreSaidToBe) {
    AddSteadyAB();
    AddSteady("C", 12);
    EXPECT_EQ(FirstLine(), "STEADY: none of the 3 stations drifts: 24 runs, 1 measurement that "
                           "stations share, limits at most 0.01 dB from the mean (A), offsets "
                           "from -1.00 dB (A) to +1.00 dB (C)");
    const Trend trend = TrendOf(data);
    EXPECT_EQ(PhraseOf(data, trend.stations[0]),
              "is steady: offset -1.00 dB, none of its 8 runs is beyond its control limits");
}

TEST_F(TrendConclusionTest, WithTwoStationsItIsSaidThatNoneIsTheMeasure) {
    AddSteadyAB();
    EXPECT_THAT(
        Conclusion().sentences,
        ElementsAre("none of the 2 stations drifts: 16 runs, 1 measurement that stations share, "
                    "limits at most 0.01 dB from the mean (A), offsets from -0.50 dB (A) to +0.50 "
                    "dB (B)",
                    "with two stations their offsets cannot tell which of them is wrong"));
}

TEST_F(TrendConclusionTest, WithOneStationItIsSaidThatItsDeviceMayHaveChanged) {
    AddSteady("A", 10);
    EXPECT_THAT(
        Conclusion().sentences,
        ElementsAre(
            "the station does not drift: 8 runs, 1 measurement, limits 0.01 dB from the mean",
            "with one station it cannot be told whether it or what it measures has "
            "changed"));
    EXPECT_EQ(PhraseOf(data, TrendOf(data).stations[0]),
              "is steady: none of its 8 runs is beyond its control limits");
}

TEST_F(TrendConclusionTest, StationsWithoutAnyPowerAreNoneOfThoseHeldAgainstEachOther) {
    AddSteady("A", 10);
    AddRun(AddStation("C"), {None});
    EXPECT_THAT(Conclusion().sentences,
                ElementsAre("no power in any run: C",
                            "with powers of one station only it cannot be told whether it or what "
                            "it measures has changed"));
    AddSteady("B", 11);
    EXPECT_EQ(Conclusion().sentences.back(),
              "with powers of two stations only their offsets cannot tell which of them is wrong");
}

TEST_F(TrendConclusionTest, StationThatIsApartIsToldBesideTheConclusion) {
    AddSteadyAB();
    AddSteady("C", 10.5);
    AddSteady("D", -5);
    EXPECT_EQ(Conclusion().word, "STEADY");
    EXPECT_EQ(
        Conclusion().sentences.at(1),
        "D reads 15.25 dB low, farther from the others' offsets than by chance; none of its 8 "
        "runs is beyond its control limits");
}

TEST_F(TrendConclusionTest, StationThatIsApartIsToldWithItsOutlierInOneSentence) {
    AddSteady("A", 10);
    AddSteady("B", 10.1);
    AddSteady("C", 10.2);
    AddRuns(AddStation("D"), {12, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13});
    const TrendConclusion conclusion = Conclusion();
    EXPECT_EQ(conclusion.word, "STEADY");
    EXPECT_THAT(
        conclusion.sentences,
        ElementsAre(
            "none of the 4 stations drifts: 35 runs, 1 measurement that stations share, "
            "limits at most 0.01 dB from the mean (D), offsets from -0.15 dB (A) to +2.85 dB (D)",
            "D reads 2.85 dB high, farther from the others' offsets than by chance; read 1.00 dB "
            "lower on 2026-03-26; 1 of its 11 runs is beyond its control limits; the limits leave "
            "out 1 lone run"));
}

TEST_F(TrendConclusionTest, TooFewRunsAreNeverFine) {
    AddSteadyAB();
    const std::uint32_t few = AddStation("C");
    AddRun(few, {10.5});
    const TrendConclusion conclusion = Conclusion();
    EXPECT_EQ(conclusion.word, "TOO FEW RUNS");
    EXPECT_THAT(conclusion.sentences,
                ElementsAre("too few runs for control limits, which need 8: C (1)"));
    EXPECT_EQ(PhraseOf(data, TrendOf(data).stations[0]),
              "has 1 run, too few for control limits, which need 8");
}

TEST_F(TrendConclusionTest, NoStationWithEnoughRunsIsOneSentence) {
    for (const char* const name : {"A", "B", "C"})
        AddRun(AddStation(name), {10});
    EXPECT_EQ(FirstLine(), "TOO FEW RUNS: none of the 3 stations has the 8 runs that control "
                           "limits need");
}

TEST_F(TrendConclusionTest, DriftIsToldBeforeTooFewRuns) {
    AddDriftOfC();
    AddRun(AddStation("D"), {10, 12, 15});
    EXPECT_EQ(Conclusion().word, "DRIFT");
    EXPECT_EQ(Conclusion().sentences.back(),
              "too few runs for control limits, which need 8: D (1)");
}

TEST_F(TrendConclusionTest, StationsThatShareNothingAreNotHeldAgainstEachOther) {
    AddItems(2);
    AddStation("A");
    AddStation("B");
    AddRun(0, {10, None});
    AddRun(1, {None, 10});
    EXPECT_EQ(FirstLine(), "NOTHING SHARED: no station has measured what another one has, so that "
                           "there is nothing to hold them against");
    EXPECT_EQ(PhraseOf(data, TrendOf(data).stations[0]),
              "has measured nothing that another station has measured");
}

TEST_F(TrendConclusionTest, NoPowerAtAllIsSaid) {
    EXPECT_EQ(FirstLine(), "NO POWER: no kept run that the filter leaves has a power");
    data.hasNoRun = true;
    EXPECT_EQ(FirstLine(), "NO POWER: no run is kept, or the filter leaves none");
    AddSteadyAB();
    AddStation("C");
    AddRun(2, {None});
    EXPECT_EQ(PhraseOf(data, TrendOf(data).stations[0]), "has no power");
}

TEST_F(TrendConclusionTest, PowersOutOfLimitsAreCounted) {
    AddSteadyAB();
    Limit limit;
    limit.maximum = "10.5"_dB;
    const std::vector<const Limit*> limits{&limit};
    EXPECT_EQ(Conclusion(&limits).word, "OUT OF LIMITS");
    EXPECT_EQ(Conclusion(&limits).sentences.front(),
              "8 of 16 powers are out of their limits, the last on 2026-03-17: B (8)");
    AddRuns(0, {10, 14});
    EXPECT_EQ(Conclusion(&limits).word, "DRIFT");
    EXPECT_EQ(Conclusion(&limits).sentences.at(1),
              "9 of 18 powers are out of their limits, the last on 2026-03-19: A (1), B (8)");
}

TEST_F(TrendConclusionTest, PowersWithoutALimitAreCounted) {
    AddItems(2);
    AddSteadyAB();
    AddRun(0, {10, 10});
    Limit limit;
    limit.maximum = "12"_dB;
    std::vector<const Limit*> limits{&limit, nullptr};
    EXPECT_EQ(Conclusion(&limits).word, "STEADY");
    EXPECT_EQ(Conclusion(&limits).sentences.at(1), "1 of 18 powers has no limit");
    limit.maximum = "9"_dB;
    EXPECT_EQ(Conclusion(&limits).word, "OUT OF LIMITS");
    EXPECT_EQ(Conclusion(&limits).sentences.at(1), "1 of 18 powers has no limit");
    limits = {nullptr, &limit};
    EXPECT_EQ(Conclusion(&limits).sentences.at(1), "17 of 18 powers have no limit");
}

TEST_F(TrendConclusionTest, LimitsThatFitNoPowerAreToldFirstWhereNothingDrifts) {
    AddSteadyAB();
    const std::uint32_t few = AddStation("C");
    AddRun(few, {10.5});
    const std::vector<const Limit*> limits{nullptr};
    EXPECT_EQ(Conclusion(&limits).word, "NO LIMIT");
    EXPECT_THAT(Conclusion(&limits).sentences,
                ElementsAre("none of the 17 powers has a limit",
                            "too few runs for control limits, which need 8: C (1)"));
    AddRuns(0, {10, 14});
    EXPECT_EQ(Conclusion(&limits).word, "DRIFT");
    EXPECT_THAT(Conclusion(&limits).sentences,
                testing::Contains("none of the 19 powers has a limit"));
}

TEST_F(TrendConclusionTest, LostMeasurementsAreToldFirstWhereNothingDrifts) {
    AddPairOfTwoItems();
    AddRun(1, {10, None});
    data.missing = {{16, 1}};
    const std::string lost =
        "B has no power for 1 of its 2 measurements in the last run that asked "
        "for it, on 2026-03-18, though it or another station has made it";
    EXPECT_EQ(FirstLine(), "NOT MEASURED: " + lost);
    EXPECT_THAT(PhraseOf(data, TrendOf(data).stations[0]),
                testing::StartsWith("is steady: offset 0.00 dB, none of its 9 runs is beyond its "
                                    "control limits; has no power for 1 of"));
    AddRuns(0, {10, 14});
    EXPECT_EQ(Conclusion().word, "DRIFT");
    EXPECT_THAT(Conclusion().sentences, testing::Contains(lost));
}

TEST_F(TrendConclusionTest, StationThatHasLostAllIsToldOnce) {
    AddItems(2);
    AddSteadyAB();
    AddRuns(AddStation("C"), {10, 10, 10, 10, 10, 10, 10, 10});
    AddRun(2, {None, None});
    AddRun(AddStation("D"), {None, None});
    data.missing = {{24, 0}, {24, 1}, {25, 0}};
    data.visits[24].measuredAt += 9 * Day;
    data.visits[25].measuredAt += 9 * Day;
    EXPECT_THAT(
        Conclusion().sentences,
        ElementsAre("C has no power for any of its 2 measurements in the last run that asked for "
                    "them, on 2026-04-04, though it or another station has made them",
                    "D has no power for its only measurement in the last run that asked for it, on "
                    "2026-04-05, though it or another station has made it"));
}

TEST_F(TrendConclusionTest, StationWhoseRunsDifferTooMuchIsNotCalledSteady) {
    AddSteady("A", 10);
    AddSteady("B", 10);
    AddRuns(AddStation("C"), {10, 10.5, 10, 10.5, 10, 10.5, 10, 10.5, 10, 10.5});
    const std::string erratic = "C differs from run to run 50 times as much as a quieter station, "
                                "so that a small drift does not show";
    EXPECT_EQ(FirstLine(), "ERRATIC: " + erratic);
    AddRun(AddStation("D"), {10});
    EXPECT_EQ(Conclusion().word, "TOO FEW RUNS");
    EXPECT_THAT(Conclusion().sentences, testing::Contains(erratic));
}

TEST_F(TrendConclusionTest, StationsThatHaveAllStoppedAreOneSentence) {
    AddSteadyAB();
    data.followedTo = data.visits.back().measuredAt + 29 * Day;
    EXPECT_EQ(Conclusion().word, "STEADY");
    EXPECT_THAT(Conclusion().sentences, testing::Contains("no station has a run since 2026-03-17"));
}

} // namespace
} // namespace Bench
