#include "Tools/SarvexTool/Bench/Core/Kept.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

TEST(KeptTest, VerdictsHaveNames) {
    EXPECT_STREQ(NameOf(KeptVerdict::Pass), "pass");
    EXPECT_STREQ(NameOf(KeptVerdict::Fail), "fail");
    EXPECT_STREQ(NameOf(KeptVerdict::NotJudged), "not judged");
}

TEST(KeptTest, AVerdictIsFoundByItsNameAlone) {
    for (const KeptVerdict verdict : {KeptVerdict::Pass, KeptVerdict::Fail, KeptVerdict::NotJudged})
        EXPECT_EQ(KeptVerdictNamed(NameOf(verdict)), verdict);
    for (const char* name : {"", "Pass", "pas", "passed", "not"})
        EXPECT_EQ(KeptVerdictNamed(name), std::nullopt) << name;
}

TEST(KeptTest, ARunIsCalledByTheFirstDigitsOfItsHash) {
    EXPECT_EQ(ShortHash("0123456789abcdef"), "01234567");
    EXPECT_EQ(ShortHash("0123"), "0123");
}

} // namespace
} // namespace Bench
