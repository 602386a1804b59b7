#include "Tools/Vemo/VemoSimulator/TextCase.h"

#include <gtest/gtest.h>

namespace VemoSimulator {

TEST(TextCaseTest, LettersOfEitherCaseAreEqual) {
    EXPECT_TRUE(EqualsIgnoringCase("-connectBin", "-CONNECTbin"));
    EXPECT_TRUE(EqualsIgnoringCase("AZaz", "azAZ"));
    EXPECT_TRUE(EqualsIgnoringCase("", ""));
}

TEST(TextCaseTest, OtherCharactersMustBeTheSame) {
    // These pairs differ by the distance between the two cases of a letter.
    EXPECT_FALSE(EqualsIgnoringCase("@", "`"));
    EXPECT_FALSE(EqualsIgnoringCase("[", "{"));
    EXPECT_FALSE(EqualsIgnoringCase("\xC4", "\xE4"));
    EXPECT_FALSE(EqualsIgnoringCase("a", "ab"));
}

} // namespace VemoSimulator
