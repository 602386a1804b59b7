#include "Tools/SarvexTool/Bench/Output/ShownWidth.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

TEST(ShownWidthTest, ACharacterTakesOneColumnOrTwo) {
    EXPECT_EQ(ShownWidth(""), 0U);
    EXPECT_EQ(ShownWidth("Band 5"), 6U);
    EXPECT_EQ(ShownWidth("Ωß"), 2U);
    EXPECT_EQ(ShownWidth("測試。"), 6U);
    EXPECT_EQ(ShownWidth("한\U0001F4F6"), 4U);
}

TEST(ShownWidthTest, ATextIsCutBetweenCharacters) {
    EXPECT_EQ(CutToWidth("Band 5", 6), "Band 5");
    EXPECT_EQ(CutToWidth("Band 5", 5), "Ba...");
    EXPECT_EQ(CutToWidth("Band 5", 3), "...");
    EXPECT_EQ(CutToWidth("Band 5", 2), "Ba");
    EXPECT_EQ(CutToWidth("Band 5", 0), "");
    EXPECT_EQ(CutToWidth("", 0), "");
    EXPECT_EQ(CutToWidth("ΩΩΩΩΩΩ", 5), "ΩΩ...");
    EXPECT_EQ(CutToWidth("測試測試", 8), "測試測試");
    // Half of a wide character is not shown.
    EXPECT_EQ(CutToWidth("測試測試", 6), "測...");
    EXPECT_EQ(CutToWidth("測試", 1), "");
}

TEST(ShownWidthTest, ALineEndsBeforeAWordThatWouldPassColumn80) {
    const std::string most(75, 'x');
    EXPECT_EQ(WrapText("", 2), "\n");
    EXPECT_EQ(WrapText("one two", 2), "one two\n");
    EXPECT_EQ(WrapText(most + " 7890", 2), most + " 7890\n");
    EXPECT_EQ(WrapText(most + " 78901 on", 2), most + "\n  78901 on\n");
    EXPECT_EQ(WrapText("  " + most + " 789", 4), "  " + most + "\n    789\n");
}

TEST(ShownWidthTest, ALongWordIsNotCut) {
    const std::string path(100, '/');
    EXPECT_EQ(WrapText("It is in " + path + " now", 0), "It is in\n" + path + "\nnow\n");
    EXPECT_EQ(WrapText(path, 2), path + "\n");
    EXPECT_EQ(WrapText(path + " x", 2), path + "\n  x\n");
}

} // namespace
} // namespace Bench
