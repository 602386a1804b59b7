#include "Tools/SarvexTool/Bench/Files/Encoding.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

using namespace std::string_view_literals;

std::string Converted(std::string_view bytes) {
    std::string storage;
    return std::string(WithoutMark(bytes, storage));
}

TEST(EncodingTest, TheMarkIsNoPartOfTheText) {
    EXPECT_EQ(Converted("\xEF\xBB\xBF"
                        "Band"),
              "Band");
    EXPECT_EQ(Converted("Band"), "Band");
    EXPECT_EQ(Converted(""), "");
    EXPECT_EQ(Converted("\xEF\xBB"), "\xEF\xBB");
}

TEST(EncodingTest, Utf16OfEitherOrderBecomesUtf8) {
    EXPECT_EQ(Converted("\xFF\xFE"
                        "B\0\xA9\x03\x2C\x6E\x3D\xD8\xF6\xDC"sv),
              "BΩ測\U0001F4F6");
    EXPECT_EQ(Converted("\xFE\xFF"
                        "\0B\x03\xA9\x6E\x2C\xD8\x3D\xDC\xF6"sv),
              "BΩ測\U0001F4F6");
}

TEST(EncodingTest, WhatIsNoUtf16BecomesNoUtf8) {
    // Half a pair before another character, at the end, and half a unit.
    EXPECT_EQ(Converted("\xFF\xFE\x3D\xD8"
                        "B\0"sv),
              "\xED\xA0\xBD"
              "B");
    EXPECT_EQ(Converted("\xFF\xFE\x3D\xD8"sv), "\xED\xA0\xBD");
    EXPECT_EQ(Converted("\xFF\xFE"
                        "B\0C"sv),
              "B\xFF");
}

} // namespace
} // namespace Bench
