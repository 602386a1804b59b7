#include "Tools/SarvexTool/Bench/Core/Utf8.h"

#include <gtest/gtest.h>

#include <string_view>

namespace Bench {
namespace {

struct Case {
    std::string_view text;
    char32_t code;
    std::size_t size;
};

TEST(Utf8Test, ACharacterIsReadWithItsSize) {
    using namespace std::string_view_literals;
    for (const auto& [text, code, size] :
         {Case{"A", U'A', 1}, Case{"\0x"sv, 0, 1}, Case{"\x7F", 0x7F, 1}, Case{"\xC2\x80", 0x80, 2},
          Case{"\xCE\xA9z", U'Ω', 2}, Case{"\xDF\xBF", 0x7FF, 2}, Case{"\xE0\xA0\x80", 0x800, 3},
          Case{"\xED\x9F\xBF", 0xD7FF, 3}, Case{"\xEE\x80\x80", 0xE000, 3},
          Case{"\xEF\xBF\xBF", 0xFFFF, 3}, Case{"\xF0\x90\x80\x80", 0x10000, 4},
          Case{"\xF4\x8F\xBF\xBF", 0x10FFFF, 4}}) {
        SCOPED_TRACE(static_cast<std::uint32_t>(code));
        const Utf8Character character = FirstCharacter(text);
        EXPECT_TRUE(character.isValid);
        EXPECT_EQ(character.code, code);
        EXPECT_EQ(character.size, size);
    }
}

TEST(Utf8Test, AByteThatBeginsNoCharacterIsNotValid) {
    for (const std::string_view text :
         {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC2", "\xC2z", "\xE0\x9F\xBF", "\xE2\x82",
          "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF", "\xF0\x90\x80", "\xF4\x90\x80\x80",
          "\xF8\x88\x80\x80\x80", "\xFF"}) {
        SCOPED_TRACE(testing::PrintToString(text));
        const Utf8Character character = FirstCharacter(text);
        EXPECT_FALSE(character.isValid);
        EXPECT_EQ(character.size, 1);
    }
}

} // namespace
} // namespace Bench
