#include "Tools/SarvexTool/Bench/Output/ShownText.h"

#include <gtest/gtest.h>

#include <string_view>

namespace Bench {
namespace {

TEST(ShownTextTest, PlainTextOfAnyLanguageStaysAsItIs) {
    for (const std::string_view text :
         {"", "Band 5, \"quoted\"", "C:\\bench\\Ω 測試.csv", "<script>", "\U0001F4F6 ~"})
        EXPECT_EQ(MakeHarmless(text), text);
}

TEST(ShownTextTest, WhatATerminalObeysIsEscaped) {
    using namespace std::string_view_literals;
    EXPECT_EQ(MakeHarmless("a\x1B[31mb"), "a\\x1B[31mb");
    EXPECT_EQ(MakeHarmless("\0\a\b\t\n\r\x7F"sv), "\\x00\\x07\\x08\\t\\n\\r\\x7F");
    // The one-character form of ESC [.
    EXPECT_EQ(MakeHarmless("\xC2\x9B"), "\\u{009B}");
}

TEST(ShownTextTest, WhatHidesOrReordersItsNeighboursIsEscaped) {
    EXPECT_EQ(MakeHarmless("a\u202Eb\u2066c\u200Fd\u061C"),
              "a\\u{202E}b\\u{2066}c\\u{200F}d\\u{061C}");
    EXPECT_EQ(MakeHarmless("\uFEFFBand\u200B\u00AD\u2028"),
              "\\u{FEFF}Band\\u{200B}\\u{00AD}\\u{2028}");
    EXPECT_EQ(MakeHarmless("\U000E0041"), "\\u{E0041}");
}

TEST(ShownTextTest, AByteThatIsNoUtf8IsEscapedByItself) {
    EXPECT_EQ(MakeHarmless("B\xE4nd \xCE\xA9 \xE2\x82"), "B\\xE4nd \xCE\xA9 \\xE2\\x82");
}

} // namespace
} // namespace Bench
