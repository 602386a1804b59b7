#include "Tools/SarvexTool/Bench/Output/Page/HistoryPage.h"
#include "Tools/SarvexTool/Bench/Output/Page/HistoryData.h"
#include "tests/Tools/SarvexTool/Bench/Core/TrendFixture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sstream>

namespace Bench {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class HistoryPageTest : public testing::Test, protected TrendFixture {
protected:
    static std::string Written(void (*write)(const HistoryPage&, std::ostream&),
                               const HistoryPage& page) {
        std::ostringstream out;
        write(page, out);
        return out.str();
    }

    std::string Written(void (*write)(const HistoryPage&, std::ostream&)) const {
        const Trend trend = TrendOf(data, limits.empty() ? nullptr : &limits);
        const NamedTrend named{data, trend, PowersOf(data, limits.empty() ? nullptr : &limits),
                               std::nullopt};
        return Written(write, {"Trend", "history.db", facts, named, pRuns});
    }

    std::string Page() const { return Written(WriteHistoryPage); }
    std::string Block() const { return Written(WriteHistoryData); }

    std::vector<const Limit*> limits;
    std::vector<PageFact> facts;
    const std::vector<KeptFacts>* pRuns = nullptr;
};

TEST_F(HistoryPageTest, HeadTellsTheTrendInWords) {
    AddDriftOfC();
    facts = {{"Store", "<b>"}};
    EXPECT_THAT(Page(), HasSubstr(R"(<header class="head">
<p class="kind">Trend</p>
<h1>history.db</h1>
<p class="verdict is-fail"><strong>Drift</strong> <span>C reads 2.00 dB higher since 2026-03-25; 3 of its 10 runs are beyond its control limits.</span></p>
<dl class="facts">
<div><dt>Store</dt><dd>&lt;b&gt;</dd></div>
</dl>
)"));
}

TEST_F(HistoryPageTest, HeadTellsAllThatThereIsToSay) {
    AddSteady("A", 10);
    EXPECT_THAT(
        Page(),
        HasSubstr(
            "<p class=\"verdict is-pass\"><strong>Steady</strong> <span>the "
            "station does not drift: 8 runs, 1 measurement, limits 0.01 dB from the mean.</span></p>\n"
            "<ul class=\"says\">\n<li>with one station it cannot be told "
            "whether it or what it measures has changed.</li>\n</ul>\n"));
}

TEST_F(HistoryPageTest, NothingKeptIsNeitherGoodNorBad) {
    EXPECT_THAT(Page(), HasSubstr("<p class=\"verdict is-none\"><strong>No power</strong>"));
}

TEST_F(HistoryPageTest, PageIsTheTemplateWithTheHistorysParts) {
    const std::string page = Page();
    EXPECT_THAT(page, StartsWith("<!DOCTYPE html>\n"));
    EXPECT_THAT(page, Not(HasSubstr("{{")));
    EXPECT_THAT(page, HasSubstr("<title>history.db - Trend</title>"));
    EXPECT_THAT(page, HasSubstr("default-src 'none'"));
    EXPECT_THAT(page, HasSubstr("class TimeChart"));
    EXPECT_THAT(page, HasSubstr("class DataTable"));
    EXPECT_THAT(page, HasSubstr("<section id=\"stations\""));
    EXPECT_THAT(page, Not(HasSubstr("<section id=\"measurements\"")));
}

TEST_F(HistoryPageTest, WholeBlockOfOneConfigurationAndChain) {
    AddRuns(AddStation("A"), {10, 10.5});
    data.visits[1].device.clear();
    Limit limit;
    limit.maximum = "10.2"_dB;
    limits = {&limit};
    EXPECT_EQ(Block(), R"({"ownMean":1,"judged":1,
"stations":[
[0,1,2,null,null,null,null,0,2,1,0]],
"points":[
[
[1772431200,3,1,-0.25,1,0],
[1772517600,4,-1,0.25,1,0]]],
"item":5,
"powers":[
[1772431200,0,3,1,10,0],
[1772517600,0,4,-1,10.5,1]],
"runs":null,
"texts":["A",
"DUT A",
"has 2 runs, too few for control limits, which need 8",
"run0",
"run1",
"Band 5, Channel 36, chain A"]}
)");
}

TEST_F(HistoryPageTest, SeveralDevicesAreSaidToBe) {
    AddRuns(AddStation("A"), {10});
    data.visits[0].device.clear();
    data.visits[0].hasSeveralDevices = true;
    const nlohmann::json block = nlohmann::json::parse(Block());
    const std::size_t ofPoint = block["points"][0][0][2].get<std::size_t>();
    const std::size_t ofPower = block["powers"][0][3].get<std::size_t>();
    EXPECT_EQ(block["texts"][ofPoint], "several");
    EXPECT_EQ(block["texts"][ofPower], "several");
}

TEST_F(HistoryPageTest, StationsAndTheirLimitsAreInTheOrderOfTheTrend) {
    AddDriftOfC();
    const nlohmann::json block = nlohmann::json::parse(Block());
    EXPECT_EQ(block["item"], -1);
    EXPECT_EQ(block["powers"].size(), 0U);
    ASSERT_EQ(block["stations"].size(), 3U);
    EXPECT_EQ(block["texts"][block["stations"][0][0].get<std::size_t>()], "C");
    const nlohmann::json& drifting = block["stations"][0];
    EXPECT_EQ(nlohmann::json(drifting.begin() + 3, drifting.end()).dump(),
              "[-0.55,0.0,-0.77,0.77,3,30,0,0]");
    ASSERT_EQ(block["points"].size(), 3U);
    EXPECT_EQ(block["points"][0].size(), 10U);
    EXPECT_EQ(block["points"][0][7][5], 1) << "beyond";
}

TEST_F(HistoryPageTest, OverviewListsTheRunsTheNewestFirst) {
    std::vector<KeptFacts> runs(2);
    runs[1].hash = "0123456789abcdef";
    runs[1].measuredAt = 100;
    runs[1].name = "</script>";
    runs[1].bench = "B1";
    runs[1].verdict = KeptVerdict::Fail;
    runs[1].measurements = 12;
    runs[1].measured = 11;
    runs[0].hash = "ff";
    runs[0].parts = {{"B2", "D", 1}, {"B1", "D", 1}, {"B2", "D", 2}, {}};
    pRuns = &runs;
    EXPECT_THAT(Block(), HasSubstr(R"("runs":[
[100,0,1,2,-1,-1,3,-1,11,12,-1,-1,-1],
[0,4,-1,5,6,-1,7,-1,0,0,-1,-1,-1]],
"texts":["01234567",
"\u003c/script>",
"B1",
"fail",
"ff",
"B1, B2",
"D",
"not judged"]}
)"));
}

TEST_F(HistoryPageTest, NoNameBeginsOrEndsAnElement) {
    AddSteady("A", 10);
    const std::string plain = Page();
    data.stations[0].name = "</script><script>alert(1)</script><!--";
    data.stations[0].devices = {"</title><style>"};
    data.visits[0].device = "</style>";
    AddRuns(0, {10, 30});
    const std::string hostile = Page();
    const auto count = [](const std::string& text, const std::string& part) {
        std::size_t found = 0;
        for (std::size_t place = text.find(part); place != std::string::npos;
             place = text.find(part, place + 1))
            ++found;
        return found;
    };
    for (const char* const part : {"<script", "</script", "<!--", "</title", "<style", "</style"})
        EXPECT_EQ(count(hostile, part), count(plain, part)) << part;
}

} // namespace
} // namespace Bench
