#include "Tools/SarvexTool/Bench/Output/Page/DataBlock.h"
#include "tests/Tools/SarvexTool/Bench/Output/Page/PageFixture.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

using testing::HasSubstr;

class DataBlockTest : public testing::Test, protected PageFixture {
protected:
    static std::string BlockOf(const Page& page) { return Written(WriteDataBlock, page); }

    std::string BlockOf(const RunResult& run) { return BlockOf(Page{"", "", {}, run}); }
};

const char* const names =
    R"({"columns":["Band","Chains","Bandwidth","Channel","Bandwidth Mode","Rate","Mode",)"
    R"("Resource Unit","Specific Resource unit","Large RU Size"],)"
    "\n"
    R"("chains":["A","B","?"],)"
    "\n"
    R"("verdicts":["pass","too low","too high","not measured","no limit"],)"
    "\n";

TEST_F(DataBlockTest, ARunAloneHasNeitherLimitsNorDifferences) {
    EXPECT_EQ(BlockOf(RunOf({{"36", "MCS0", "12.50"}, {"auto", "MCS0", ""}})),
              std::string(names) + R"("limits":null,
"measurements":[
[0,0,"12.5",-1,-1,-1,null],
[1,0,null,0,-1,-1,null]],
"differences":null,
"sources":[],
"groupBy":null,
"configurations":[
[2,1,2,-1,3,-1,4,-1,-1,-1,-1],
[3,1,2,-1,5,-1,4,-1,-1,-1,-1]],
"texts":["no power was reported",
"5",
"A",
"36",
"MCS0",
"auto"]}
)");
}

TEST_F(DataBlockTest, ARunWithoutMeasurementsIsAWholeBlock) {
    EXPECT_EQ(BlockOf(RunOf({})), std::string(names) + R"("limits":null,
"measurements":[],
"differences":null,
"sources":[],
"groupBy":null,
"configurations":[],
"texts":[]}
)");
}

TEST_F(DataBlockTest, AJudgedMeasurementNamesItsVerdictItsLimitAndItsMargin) {
    const RunResult run = RunOf({{"36", "0", "9.9"}, {"36", "0", "15"}, {"36", "0", ""}});
    LimitTable table(LimitsOf("10", ""));
    const Judgements judgements = Judge(run, table);
    EXPECT_THAT(BlockOf(Page{"", "", {}, run, &judgements}), HasSubstr(R"("limits":[
[2,"10",null]],
"measurements":[
[0,0,"9.9",-1,1,0,"-0.1"],
[1,0,"15",-1,0,0,"5"],
[2,0,null,0,3,0,null]],
)"));
}

TEST_F(DataBlockTest, AMeasurementThatNoLimitFitsHasNone) {
    const RunResult run = RunOf({{"36", "0", "9.9"}});
    LimitTable table(Limits{});
    const Judgements judgements = Judge(run, table);
    EXPECT_THAT(BlockOf(Page{"", "", {}, run, &judgements}), HasSubstr(R"("limits":[],
"measurements":[
[0,0,"9.9",-1,4,-1,null]],
)"));
}

TEST_F(DataBlockTest, WithABaselineEachMeasurementHasItsOldPowerAndItsExactChange) {
    const RunResult run = RunOf({{"36", "0", "10.4"}, {"40", "0", "11"}, {"44", "0", ""}});
    const RunResult old = RunOf({{"36", "0", "10.1"}, {"44", "0", "12"}, {"48", "1", "13"}});
    const Differences differences = Compare(old, run, "0.2"_dB);
    const PageBaseline baseline{old, differences, "0.2"_dB};
    const std::string block = BlockOf(Page{"", "", {}, run, nullptr, &baseline});
    EXPECT_THAT(block, HasSubstr(R"("measurements":[
[0,0,"10.4",-1,-1,-1,null,2,"10.1","0.3"],
[1,0,"11",-1,-1,-1,null,0,null,null],
[2,0,null,0,-1,-1,null,3,"12",null]],
"differences":[
[0,0,2,"10.1","0.3",0],
[1,2,3,"12",null,0],
[4,1,0,null,null,0],
[3,-1,4,"13",null,0,[3,0]]],
"tolerance":"0.2",
"noise":null,
"shifts":[
[1,2,1,"0.3"]],
"sources":[],
"groupBy":null,
"configurations":[
[2,1,3,-1,4,-1,2,-1,-1,-1,-1],
[3,1,3,-1,5,-1,2,-1,-1,-1,-1],
[4,1,3,-1,6,-1,2,-1,-1,-1,-1],
[4,1,3,-1,7,-1,8,-1,-1,-1,-1]],
)"));
}

TEST_F(DataBlockTest, SourcesNameTheirPlaces) {
    RunResult run = RunOf({{"36", "0", "9.9"}, {"36", "0", "15"}});
    run.sources = Sources(
        {{{2, 2}, {"one</b>", "DUT", 7}}, {{3, 3}, {"one</b>", std::nullopt, std::nullopt}}});
    const std::string block = BlockOf(Page{"", "", {}, run, nullptr, nullptr, PlacePart::Device});
    EXPECT_THAT(block, HasSubstr(R"("sources":[
[2,2,0,1,7],
[3,3,0,-1,null]],
"groupBy":"device",
)"));
    EXPECT_THAT(block, HasSubstr("\"texts\":[\"one\\u003c/b>\",\n\"DUT\",\n"));
}

struct TextCase {
    std::string_view text;
    std::string json;
};

TEST_F(DataBlockTest, NoTextEndsTheScriptElementOrHidesItself) {
    for (const auto& [text, json] :
         std::vector<TextCase>{{"<script>", R"("\u003cscript>")"},
                               {"</script>", R"("\u003c/script>")"},
                               {"<!--", R"("\u003c!--")"},
                               {"]]>", R"("]]>")"},
                               {"a\"b\\c'd", R"("a\"b\\c'd")"},
                               {"&lt;", R"("&lt;")"},
                               {"\xE2\x80\xA8", R"("\\u{2028}")"},
                               {"\xE2\x80\xAE", R"("\\u{202E}")"},
                               {"\x1B[2J", R"("\\x1B[2J")"},
                               {"\xFF", R"("\\xFF")"},
                               {"\xC3\xA9\xF0\x9F\x93\xB6", R"("\u00e9\ud83d\udcf6")"}}) {
        SCOPED_TRACE(json);
        EXPECT_THAT(BlockOf(RunOf({{"36", text, "1"}})), HasSubstr("\"36\",\n" + json + "]}\n"));
    }
}

/// A copy of the rest for each character would take minutes.
TEST_F(DataBlockTest, ALongTextTakesTimeByItsLengthOnly) {
    constexpr std::size_t count = 1'000'000;
    const std::string text(count, '<');
    EXPECT_GT(BlockOf(RunOf({{"36", text, "1"}})).size(), count * 6);
}

} // namespace
} // namespace Bench
