#include "Tools/SarvexTool/Bench/Core/Summaries.h"
#include "tests/Tools/SarvexTool/Bench/Core/CoreFixture.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

class SummariesTest : public testing::Test {
protected:
    /// One measurement on chain A.
    void Add(CoreFixture::Cells cells, const char* power) {
        Settings own = fixture.Of(cells);
        own[Setting::Chains] = fixture.Text("A");
        m_builder.Add({++m_line, own, Decimal::Parse(power), std::nullopt});
    }

    /// Judges what was added: powers of 10 to 20 pass, but in band 6 there is no limit.
    void JudgeAll() {
        m_pattern.values = {fixture.Text("5"), fixture.Text("2.4")};
        Limit limit;
        limit.settings[static_cast<std::size_t>(Setting::Band)] = &m_pattern;
        limit.minimum = "10"_dB;
        limit.maximum = "20"_dB;
        m_pTable = std::make_unique<LimitTable>(Limits{{limit}, {}});
        run = m_builder.Take();
        judgements = Judge(run, *m_pTable);
    }

    static std::string Describe(const VerdictCounts& counts) {
        std::string text = counts.band == nullptr ? "-" : *counts.band;
        for (const std::size_t count : counts.counts)
            text += " " + std::to_string(count);
        return text + " " + (counts.worst ? std::to_string(*counts.worst) : "-");
    }

    CoreFixture fixture;
    RunResult run;
    Judgements judgements;

private:
    RunResultBuilder m_builder;
    LineNumber m_line = 1;
    SettingPattern m_pattern;
    std::unique_ptr<LimitTable> m_pTable;
};

TEST_F(SummariesTest, CountsByBandAndVerdictWithTheWorstMargin) {
    Add({}, "15");
    Add({{Setting::Band, "5"}}, "12");
    Add({{Setting::Band, "5"}}, "9");
    Add({{Setting::Band, "5"}}, "21");
    Add({{Setting::Band, "2.4"}}, "11");
    Add({{Setting::Band, "6"}}, "11");
    Add({{Setting::Band, "6"}}, "");
    JudgeAll();
    const JudgementSummary summary = Summarize(run, judgements);
    ASSERT_EQ(summary.bands.size(), 4U);
    EXPECT_EQ(Describe(summary.bands[0]), "- 0 0 0 0 1 -");
    EXPECT_EQ(Describe(summary.bands[1]), "2.4 1 0 0 0 0 4");
    EXPECT_EQ(Describe(summary.bands[2]), "5 1 1 1 0 0 2") << "the first of equal margins";
    EXPECT_EQ(Describe(summary.bands[3]), "6 0 0 0 1 1 -");
    EXPECT_EQ(Describe(summary.all), "- 2 1 1 1 2 2");
}

TEST_F(SummariesTest, NotMeasuredComesFirstThenTheFarthestOut) {
    Add({{Setting::Band, "6"}}, "1");
    Add({{Setting::Band, "5"}}, "9.5");
    Add({{Setting::Band, "5"}}, "15");
    Add({{Setting::Band, "5"}}, "25");
    Add({{Setting::Band, "5"}}, "");
    Add({{Setting::Band, "5"}}, "5");
    Add({{Setting::Band, "2.4"}}, "");
    JudgeAll();
    EXPECT_EQ(NotPassed(judgements), (std::vector<std::uint32_t>{4, 6, 3, 5, 1, 0}));
}

TEST_F(SummariesTest, NothingIsListedWhereAllPassed) {
    Add({{Setting::Band, "5"}}, "15");
    JudgeAll();
    EXPECT_TRUE(NotPassed(judgements).empty());
}

TEST_F(SummariesTest, CountsByThePlaceOfTheLines) {
    Add({{Setting::Band, "5"}}, "15");
    Add({{Setting::Band, "5"}}, "9");
    Add({{Setting::Band, "2.4"}}, "25");
    Add({{Setting::Band, "2.4"}}, "12");
    JudgeAll();
    run.sources = Sources({{{2, 2}, {"b", std::nullopt, 10}},
                           {{3, 3}, {"a", "DUT", 9}},
                           {{4, 4}, {"b", std::nullopt, 9}}});
    const auto described = [this](PlacePart part) {
        std::string text;
        for (const PlaceCounts& group : SummarizeBy(part, run, judgements))
            text += group.name.value_or("?") + Describe(group.counts).substr(1) + "\n";
        return text;
    };
    EXPECT_EQ(described(PlacePart::Bench), "? 1 0 0 0 0 3\na 0 1 0 0 0 1\nb 1 0 1 0 0 2\n");
    EXPECT_EQ(described(PlacePart::Device), "? 2 0 1 0 0 2\nDUT 0 1 0 0 0 1\n");
    EXPECT_EQ(described(PlacePart::Attempt), "? 1 0 0 0 0 3\n9 0 1 1 0 0 2\n10 1 0 0 0 0 0\n");
}

} // namespace
} // namespace Bench
