#include "Tools/SarvexTool/Bench/History/StoredText.h"

#include <gtest/gtest.h>

#include <set>

namespace Bench {
namespace {

TEST(StoredTextTest, AUsualTextStaysAsItIs) {
    for (const char* text :
         {"", "bench 1", "C:\\x\xC3\xBC", "'; DROP TABLE runs; --", "base6", "a\nb"})
        EXPECT_EQ(StoredText(text), text);
}

TEST(StoredTextTest, WhatADatabaseDoesNotTakeIsInBase64) {
    EXPECT_EQ(StoredText("\xFF"), "base64:/w==");
    EXPECT_EQ(StoredText(std::string("a\0b", 3)), "base64:YQBi");
    EXPECT_EQ(StoredText("base64:"), "base64:YmFzZTY0Og==");
}

TEST(StoredTextTest, EachTextComesBack) {
    std::set<std::string> stored;
    const std::string texts[] = {"",
                                 "a",
                                 "\xFF",
                                 "\xC3",
                                 "base64:",
                                 "base64:/w==",
                                 "base64",
                                 std::string("\0", 1),
                                 "\xED\xA0\x80",
                                 "\xF4\x90\x80\x80",
                                 "base64:base64:/w=="};
    for (const std::string& text : texts) {
        EXPECT_EQ(TextOfStored(StoredText(text)), text);
        EXPECT_TRUE(stored.insert(StoredText(text)).second) << text;
    }
}

TEST(StoredTextTest, WhatSomebodyElseHasWrittenStaysAsItIs) {
    EXPECT_EQ(TextOfStored("base64:?"), "base64:?");
}

} // namespace
} // namespace Bench
