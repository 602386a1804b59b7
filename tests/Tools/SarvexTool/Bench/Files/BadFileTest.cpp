#include "Tools/SarvexTool/Bench/Files/BadFile.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

TEST(BadFileTest, OneProblemIsThatOfTheFileItself) {
    const BadInput bad("a.csv", "cannot be read");
    EXPECT_EQ(bad.File(), "a.csv");
    ASSERT_EQ(bad.Problems().size(), 1);
    EXPECT_EQ(bad.Problems()[0].line, 0);
    EXPECT_EQ(bad.Problems()[0].column, 0);
    EXPECT_EQ(bad.Problems()[0].severity, Severity::Error);
    EXPECT_EQ(bad.Problems()[0].text, "cannot be read");
    EXPECT_STREQ(bad.what(), "a.csv: cannot be read");
}

TEST(BadFileTest, KeepsAllProblems) {
    const BadOutput bad("b.csv",
                        {{Severity::Error, 2, 1, "first"}, {Severity::Error, 3, 0, "second"}});
    ASSERT_EQ(bad.Problems().size(), 2);
    EXPECT_EQ(bad.Problems()[1].text, "second");
    EXPECT_STREQ(bad.what(), "b.csv: first");
}

} // namespace
} // namespace Bench
