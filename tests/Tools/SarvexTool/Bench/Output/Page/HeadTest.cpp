#include "Tools/SarvexTool/Bench/Output/Page/Head.h"
#include "tests/Tools/SarvexTool/Bench/Output/Page/PageFixture.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

using testing::HasSubstr;

class HeadTest : public testing::Test, protected PageFixture {
protected:
    static std::string HeadOf(const Page& page) { return Written(WriteHead, page); }

    static std::string Judged(const RunResult& run, Limits limits) {
        LimitTable table(std::move(limits));
        const Judgements judgements = Judge(run, table);
        return HeadOf(Page{"", "", {}, run, &judgements});
    }

    static std::string Compared(const RunResult& old, const RunResult& run) {
        const Differences differences = Compare(old, run, "0.5"_dB);
        const PageBaseline baseline{old, differences, "0.5"_dB};
        return HeadOf(Page{"", "", {}, run, nullptr, &baseline});
    }

    static std::string Banner(const std::string& kind, const std::string& word,
                              const std::string& sentence) {
        return "<p class=\"verdict is-" + kind + "\"><strong>" + word + "</strong> <span>" +
               sentence + "</span></p>\n";
    }
};

TEST_F(HeadTest, TellsWhatIsKnownWithoutLimits) {
    const RunResult run = RunOf({{"36", "0", "9"}, {"40", "0", ""}});
    EXPECT_EQ(HeadOf(Page{"Report", "a/result.csv", {{"Country code", "US"}}, run}),
              "<p class=\"kind\">Report</p>\n"
              "<h1>a/result.csv</h1>\n" +
                  Banner("none", "Not judged",
                         "No limits were given; 1 of 2 measurements have a power.") +
                  R"(<ul class="counts" aria-label="Counts">
<li><a href="#measurements" data-verdict="all"><b class="is-all">2</b> measurements</a></li>
<li><a href="#measurements" data-verdict="measured"><b class="is-measured">1</b> measured</a></li>
<li><a href="#measurements" data-verdict="not measured"><b class="is-not-measured">1</b> not measured</a></li>
</ul>
<dl class="facts">
<div><dt>Country code</dt><dd>US</dd></div>
<div><dt>Configurations</dt><dd>2</dd></div>
</dl>
)");
}

TEST_F(HeadTest, RunThatEndedEarlyHasNotPassed) {
    RunResult run = RunOf({{"36", "0", "9"}});
    run.earlyEnd = EarlyEnd{1, 5};
    Limits limits;
    limits.lines.emplace_back();
    EXPECT_THAT(
        Judged(run, std::move(limits)),
        HasSubstr(Banner("fail", "Not passed",
                         "The run is not complete: 1 of 5 lines were run. Of the lines that "
                         "were run, all are within their limits.")));
    EXPECT_THAT(HeadOf(Page{"", "", {}, run}),
                HasSubstr("<span>The run is not complete: 1 of 5 lines were run. No limits were "));
}

TEST_F(HeadTest, TextsAreEscapedAndMadeVisible) {
    const RunResult run = RunOf({});
    EXPECT_THAT(HeadOf(Page{"<k>", "a\"b'c&d\xE2\x80\xAE", {{"<n>", "</dd><script>"}}, run}),
                testing::AllOf(HasSubstr("<p class=\"kind\">&lt;k&gt;</p>\n"),
                               HasSubstr("<h1>a&quot;b&#39;c&amp;d\\u{202E}</h1>\n"),
                               HasSubstr("<dt>&lt;n&gt;</dt><dd>&lt;/dd&gt;&lt;script&gt;</dd>")));
}

TEST_F(HeadTest, TheVerdictIsSaidInWords) {
    EXPECT_THAT(Judged(RunOf({{"36", "0", "12"}, {"40", "0", "13"}}), LimitsOf("10", "15")),
                HasSubstr(Banner("pass", "Passed", "All 2 measurements are within their limits.")));
    EXPECT_THAT(Judged(RunOf({{"36", "0", "12"}}), LimitsOf("10", "15")),
                HasSubstr(Banner("pass", "Passed", "The one measurement is within its limits.")));
    EXPECT_THAT(
        Judged(RunOf({{"36", "0", "9"}, {"40", "0", ""}, {"44", "0", "12"}}), LimitsOf("10", "15")),
        HasSubstr(Banner("fail", "Not passed",
                         "2 of 3 measurements did not pass: 1 too low, 1 not measured.")));
    EXPECT_THAT(
        Judged(RunOf({{"36", "0", "9"}}), {}),
        HasSubstr(Banner("fail", "Not passed", "1 of 1 measurement did not pass: 1 no limit.")));
    EXPECT_THAT(Judged(RunOf({}), LimitsOf("10", "15")),
                HasSubstr(Banner("none", "Nothing to judge", "There is no measurement.")));
}

TEST_F(HeadTest, EveryVerdictIsCountedAlsoWithNone) {
    const std::string head = Judged(RunOf({{"36", "0", "16"}}), LimitsOf("10", "15"));
    EXPECT_THAT(head, HasSubstr("<li class=\"zero\"><a href=\"#measurements\" "
                                "data-verdict=\"too low\"><b class=\"is-too-low\">0</b> too low"));
    EXPECT_THAT(head, HasSubstr("<li><a href=\"#measurements\" data-verdict=\"too high\">"
                                "<b class=\"is-too-high\">1</b> too high</a></li>"));
}

TEST_F(HeadTest, AComparisonWithoutLimitsIsAlikeOrDifferent) {
    const RunResult run = RunOf({{"36", "0", "12"}, {"40", "0", "12"}});
    EXPECT_THAT(Compared(run, run),
                HasSubstr(Banner("pass", "Alike",
                                 "2 measurements are in both runs, and none differs by more than "
                                 "0.5 dB.")));
    EXPECT_THAT(Compared(RunOf({{"36", "0", "11"}}), run),
                HasSubstr(Banner("fail", "Different",
                                 "2 differences: powers that changed by more than 0.5 dB, or are "
                                 "in one run only; 1 measurement is in both runs.")));
}

TEST_F(HeadTest, PowersThatNobodyAskedForAreTold) {
    RunResultBuilder builder;
    builder.Add(core.RowOf(2, {{Setting::Chains, "A"}}, "10", "11"));
    const RunResult run = builder.Take();
    EXPECT_THAT(HeadOf(Page{"", "", {}, run}),
                HasSubstr("<dt>Powers of chains that were not asked for, not counted</dt>"
                          "<dd>1</dd>"));
}

} // namespace
} // namespace Bench
