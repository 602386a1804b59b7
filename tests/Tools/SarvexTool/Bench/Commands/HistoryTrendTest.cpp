#include "tests/Tools/SarvexTool/Bench/Commands/CommandFixture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace Bench {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class HistoryTrendTest : public CommandFixture {
protected:
    int History(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "history");
        arguments.insert(arguments.end(), {"--store", directory.Path("history.db")});
        return Run(arguments);
    }

    /// Keeps a run of a bench for each power, one a day. The second line makes runs of one power
    /// differ; it is of chain B.
    void Keep(const std::string& bench, const std::vector<std::string>& powers,
              const std::string& band = "5") {
        int day = 10;
        for (const std::string& power : powers) {
            const std::string result = directory.Create(
                bench + std::to_string(day) + ".csv",
                Header() + band + ",A," + power + ",NA\n2.4,B,NA,1" + std::to_string(day) + "." +
                    std::to_string(bench.front()) + "\n");
            ASSERT_EQ(History({"add", result, "--bench", bench, "--device", "DUT", "--measured",
                               "2026-03-" + std::to_string(day)}),
                      0)
                << err.str();
            ++day;
        }
    }

    void KeepDriftOfC() {
        Keep("A", std::vector<std::string>(9, "10"));
        Keep("B", std::vector<std::string>(9, "10.5"));
        Keep("C", {"10", "10", "10", "10", "10", "10", "10", "12", "12"});
    }
};

TEST_F(HistoryTrendTest, FirstLineNamesTheBenchThatDrifts) {
    KeepDriftOfC();
    EXPECT_EQ(History({"trend", "Chain=A"}), 1);
    EXPECT_THAT(out.str(), StartsWith("DRIFT: C reads 2.00 dB higher since 2026-03-17; 2 of its 9 "
                                      "runs are beyond its control limits\n"));
    EXPECT_EQ(err.str(), "");
}

TEST_F(HistoryTrendTest, WordsAndOptionsChooseWhatIsFollowed) {
    KeepDriftOfC();
    EXPECT_EQ(History({"trend", "Band=5", "Chain=A", "--until", "2026-03-16"}), 1);
    EXPECT_THAT(out.str(), StartsWith("TOO FEW RUNS: none of the 3 stations has the 8 runs that "
                                      "control limits need\n"));
    EXPECT_EQ(History({"trend", "Band=5", "--bench", "A"}), 0);
    EXPECT_THAT(out.str(), StartsWith("STEADY: the station does not drift: 9 runs, 1 measurement"));
    EXPECT_THAT(out.str(), HasSubstr("\nBand 5, Chains A, chain A, in dBm:\n"));
    EXPECT_EQ(History({"trend", "Band=6"}), 1);
    EXPECT_THAT(out.str(), StartsWith("NO POWER: "));
}

TEST_F(HistoryTrendTest, ValueThatNoKeptMeasurementHasIsTold) {
    Keep("A", std::vector<std::string>(9, "10"));
    EXPECT_EQ(History({"trend", "Band=5", "Channel=37", "Rate=M\tCS"}), 1);
    EXPECT_EQ(out.str(), "NO POWER: no kept measurement has Channel 37\n"
                         "no kept measurement has Rate M\\tCS\n");
    EXPECT_EQ(History({"trend", "Band=5", "Chain=B"}), 1);
    EXPECT_EQ(out.str(), "NO POWER: no kept run that the filter leaves has a power\n");
    EXPECT_EQ(History({"trend", "Channel=37", "--json", "-"}), 1);
    EXPECT_EQ(nlohmann::json::parse(out.str()).at("says"),
              nlohmann::json({"no kept measurement has Channel 37"}));
}

TEST_F(HistoryTrendTest, FilterThatLeavesNoRunIsTold) {
    Keep("A", std::vector<std::string>(9, "10"));
    for (const std::vector<std::string>& filter :
         {std::vector<std::string>{"--bench", "B9"}, {"--since", "2027-01-01"}}) {
        std::vector<std::string> arguments{"trend"};
        arguments.insert(arguments.end(), filter.begin(), filter.end());
        EXPECT_EQ(History(arguments), 1);
        EXPECT_EQ(out.str(), "NO POWER: no run is kept, or the filter leaves none\n");
    }
}

TEST_F(HistoryTrendTest, BenchThatWasAskedForNothingOfWhatIsChosenTakesNoPart) {
    Keep("A", std::vector<std::string>(9, "10"));
    Keep("B", std::vector<std::string>(9, "10"), "6");
    EXPECT_EQ(History({"trend", "Band=5"}), 0);
    EXPECT_THAT(out.str(),
                StartsWith("STEADY: the station does not drift: 9 runs, 1 measurement, limits 0.01 "
                           "dB from the mean\nA has no run since 2026-03-18\n"
                           "with one station it cannot be told"));
}

TEST_F(HistoryTrendTest, BenchWithoutAPowerOfWhatIsChosenIsNeverFine) {
    Keep("A", std::vector<std::string>(9, "10"));
    Keep("B", std::vector<std::string>(9, "NA"));
    EXPECT_EQ(History({"trend", "Band=5"}), 1);
    EXPECT_THAT(out.str(),
                StartsWith("NOT MEASURED: B has no power for its only measurement in the last run "
                           "that asked for it, on 2026-03-18, though it or another station has "
                           "made it\n"));
    EXPECT_THAT(out.str(), Not(HasSubstr("too few runs")));
}

TEST_F(HistoryTrendTest, PowerThatTheLastRunLacksIsTold) {
    Keep("A", std::vector<std::string>(10, "10"));
    std::vector<std::string> powers(9, "10");
    powers.emplace_back("NA");
    Keep("B", powers);
    EXPECT_EQ(History({"trend", "Chain=A"}), 1);
    EXPECT_THAT(out.str(),
                StartsWith("NOT MEASURED: B has no power for its only measurement in the last run "
                           "that asked for it, on 2026-03-19, though it or another station has "
                           "made it\n"));
}

TEST_F(HistoryTrendTest, RunsAreFollowedToNowOrToTheEndThatIsChosen) {
    KeepDriftOfC();
    EXPECT_EQ(History({"trend", "Band=5", "--bench", "A"}), 0);
    EXPECT_THAT(out.str(), HasSubstr("\nA has no run since 2026-03-18\n"));
    EXPECT_EQ(History({"trend", "Band=5", "--bench", "A", "--until", "2026-04-01"}), 0);
    EXPECT_THAT(out.str(), Not(HasSubstr("has no run since")));
}

TEST_F(HistoryTrendTest, WordsThatNameNothingAreRefused) {
    struct Case {
        const char* word;
        const char* told;
    };
    for (const Case& each :
         {Case{"Band", R"("Band" is no SETTING=VALUE, as Band=5 or Chain=A is)"},
          Case{"Bnd=5", R"(there is no setting "Bnd"; did you mean "Band"?)"},
          Case{"Chain=C", R"("Chain=C" names no chain; write Chain=A or Chain=B)"}}) {
        SCOPED_TRACE(each.word);
        EXPECT_EQ(History({"trend", each.word}), 2);
        EXPECT_THAT(err.str(), HasSubstr(each.told));
    }
    for (const std::vector<std::string>& twice :
         {std::vector<std::string>{"Band=5", "Band=6"}, {"Chain=A", "Chain=A"}}) {
        EXPECT_EQ(History({"trend", twice.front(), twice.back()}), 2);
        EXPECT_THAT(err.str(), HasSubstr(" is given more than once"));
    }
}

TEST_F(HistoryTrendTest, StoreThatIsNotThereIsAnError) {
    EXPECT_EQ(History({"trend"}), 2);
    EXPECT_EQ(out.str(), "");
    EXPECT_THAT(err.str(), HasSubstr("history.db"));
}

TEST_F(HistoryTrendTest, PowersOutOfLimitsAreFound) {
    Keep("A", std::vector<std::string>(8, "10"));
    const std::string limits = directory.Create("limits.csv", "Band,Chain,Min,Max\n5,*,*,9\n");
    EXPECT_EQ(History({"trend", "Band=5"}), 0);
    EXPECT_EQ(History({"trend", "Band=5", "--limits", limits}), 1);
    EXPECT_THAT(
        out.str(),
        StartsWith(
            "OUT OF LIMITS: 8 of 8 powers are out of their limits, the last on 2026-03-17\n"));
}

TEST_F(HistoryTrendTest, LimitsThatFitNoPowerAreFound) {
    Keep("A", std::vector<std::string>(8, "10"));
    const std::string limits = directory.Create("limits.csv", "Band,Chain,Min,Max\n6,*,*,9\n");
    EXPECT_EQ(History({"trend", "Band=5", "--limits", limits}), 1);
    EXPECT_THAT(out.str(), StartsWith("NO LIMIT: none of the 8 powers has a limit\n"));
}

TEST_F(HistoryTrendTest, JsonAndPageAreWrittenBesideTheText) {
    KeepDriftOfC();
    const std::string page = directory.Path("trend.html");
    EXPECT_EQ(History({"trend", "Chain=A", "--json", "-", "--html", page}), 1);
    const nlohmann::json trend = nlohmann::json::parse(out.str());
    EXPECT_EQ(trend.at("stations").at(0).at("station"), "C");
    EXPECT_EQ(trend.at("stations").at(0).at("devices"), nlohmann::json({"DUT"}));
    EXPECT_EQ(trend.at("powers").size(), 27U);
    EXPECT_THAT(err.str(), StartsWith("DRIFT: C "));
    const std::string written = ReadBytes("trend.html");
    EXPECT_THAT(written, HasSubstr("<p class=\"kind\">Trend of transmit power tests</p>"));
    EXPECT_THAT(written, HasSubstr("<dt>Only</dt><dd>Chain=A</dd>"));
    EXPECT_THAT(written,
                HasSubstr("<dt>Measured</dt><dd>2026-03-10 00:00 to 2026-03-18 00:00 UTC</dd>"));
    EXPECT_THAT(written, HasSubstr("\"runs\":null"));
}

TEST_F(HistoryTrendTest, AnOutputIsNoInput) {
    Keep("A", {"10"});
    const std::string limits = directory.Create("limits.csv", "Band,Chain,Min,Max\n5,*,*,9\n");
    EXPECT_EQ(History({"trend", "--limits", limits, "--html", limits}), 2);
    EXPECT_EQ(ReadBytes("limits.csv"), "Band,Chain,Min,Max\n5,*,*,9\n");
}

TEST_F(HistoryTrendTest, OverviewListsTheRunsThatTheOptionsChoose) {
    KeepDriftOfC();
    const std::string page = directory.Path("overview.html");
    EXPECT_EQ(History({"report", "-o", page, "--bench", "C", "--since", "2026-03-17"}), 0);
    EXPECT_EQ(out.str() + err.str(), "");
    const std::string written = ReadBytes("overview.html");
    EXPECT_THAT(written, HasSubstr("<p class=\"kind\">Kept transmit power tests</p>"));
    EXPECT_THAT(written, HasSubstr("<dt>Runs</dt><dd>2</dd>"));
    EXPECT_THAT(written, HasSubstr("<dd>since 2026-03-17</dd>"));
    EXPECT_THAT(written, HasSubstr("<dd>bench C</dd>"));
    // The newest comes first.
    const std::size_t runs = written.find("\"runs\":[\n[1773792000,");
    ASSERT_NE(runs, std::string::npos);
    EXPECT_NE(written.find("\n[1773705600,", runs), std::string::npos);
    EXPECT_THAT(written, Not(HasSubstr("\"B\"")));
}

} // namespace
} // namespace Bench
