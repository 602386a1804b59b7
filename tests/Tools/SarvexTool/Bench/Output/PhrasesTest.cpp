#include "Tools/SarvexTool/Bench/Output/Phrases.h"
#include "tests/Tools/SarvexTool/Bench/Output/OutputFixture.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

TEST(PhrasesTest, LimitsSayWhichBoundsTheyHave) {
    Limit limit;
    EXPECT_EQ(PhraseOf(limit), "without bounds");
    limit.minimum = "-1.5"_dB;
    EXPECT_EQ(PhraseOf(limit), "at least -1.5 dBm");
    limit.maximum = "2"_dB;
    EXPECT_EQ(PhraseOf(limit), "-1.5 to 2 dBm");
    limit.minimum.reset();
    EXPECT_EQ(PhraseOf(limit), "at most 2 dBm");
}

TEST(PhrasesTest, PassSaysItsMargin) {
    const OutputFixture fixture;
    EXPECT_EQ(PhraseOf(fixture.run, fixture.judgements.all[0]),
              "pass: 12.5 dBm, limits 12 to 14 dBm, margin 0.5 dB");
}

TEST(PhrasesTest, EachKindOfDifferenceSaysBothSides) {
    const OutputFixture fixture;
    const auto phrase = [&fixture](Difference::Kind kind, std::optional<std::uint32_t> before,
                                   std::optional<std::uint32_t> after, bool isNoise = false) {
        return PhraseOf(fixture.run, fixture.run, {kind, before, after, "0.5"_dB, isNoise});
    };
    using Kind = Difference::Kind;
    EXPECT_EQ(phrase(Kind::Changed, 0, 6), "changed by +0.5 dB: 12.5 dBm to 13 dBm");
    EXPECT_EQ(phrase(Kind::Changed, 0, 6, true),
              "changed by +0.5 dB: 12.5 dBm to 13 dBm, within the noise");
    EXPECT_EQ(phrase(Kind::MeasuredInOldOnly, 0, 3),
              "measured in the old run only: 12.5 dBm, then not measured: no power was reported");
    EXPECT_EQ(phrase(Kind::MeasuredInNewOnly, 4, 0),
              "measured in the new run only: 12.5 dBm, before that not measured: Band is uncertain "
              "since line 4");
    EXPECT_EQ(phrase(Kind::InOldOnly, 0, {}), "in the old run only: 12.5 dBm");
    EXPECT_EQ(phrase(Kind::InNewOnly, {}, 3),
              "in the new run only: not measured: no power was reported");
}

TEST(PhrasesTest, NumbersAreRoundedToThousandths) {
    EXPECT_EQ(Rounded(0.0004), "0");
    EXPECT_EQ(Rounded(-0.0004), "0");
    EXPECT_EQ(Rounded(-0.0006), "-0.001");
    EXPECT_EQ(Rounded(12.3456), "12.346");
    EXPECT_EQ(Rounded(1.5), "1.5");
}

TEST(PhrasesTest, ChangesHaveASign) {
    EXPECT_EQ(SignedDecibels("0.5"_dB), "+0.5 dB");
    EXPECT_EQ(SignedDecibels("-0.5"_dB), "-0.5 dB");
}

TEST(PhrasesTest, OnePowerThatDoesNotCountIsSingular) {
    EXPECT_EQ(NoteOfUncertain(1), "1 of the powers does not count, because one of its settings is "
                                  "uncertain; judge and report name it");
    EXPECT_EQ(NoteOfUncertain(2), "2 of the powers do not count, because a setting of theirs is "
                                  "uncertain; judge and report name them");
}

} // namespace
} // namespace Bench
