#include "Tools/SarvexTool/Bench/Output/ShellArgument.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace Bench {
namespace {

constexpr bool isWindows = std::filesystem::path::preferred_separator == '\\';

TEST(ShellArgumentTest, PlainOnesAreAsTheyAre) {
    for (const char* argument : {"runs/plan", "--device=DUT-7", "2026-03-09T08:05:00Z", "a@b"})
        EXPECT_EQ(ShellArgument(argument), argument);
    EXPECT_EQ(ShellArgument("a\\b"), isWindows ? "a\\b" : "'a\\b'");
}

TEST(ShellArgumentTest, AllElseIsInQuotes) {
    const std::string quote = isWindows ? "\"" : "'";
    for (const std::string argument :
         {"", " ", "$(touch x)", "`x`", "a;b", "a&b", "*", "~", "!1", "#1", "\xCE\xA9"})
        EXPECT_EQ(ShellArgument(argument), quote + argument + quote);
}

TEST(ShellArgumentTest, ControlCharactersAreEscapedWhereAShellReadsThem) {
    EXPECT_EQ(ShellArgument("new\nline"), isWindows ? "\"new\nline\"" : R"($'new\012line')");
    EXPECT_EQ(ShellArgument("it's\t1\x7F\\\x1B"),
              isWindows ? "\"it's\t1\x7F\\\x1B\"" : R"($'it\'s\0111\177\\\033')");
}

TEST(ShellArgumentTest, QuotesAreKept) {
    EXPECT_EQ(ShellArgument("it's"), isWindows ? "\"it's\"" : R"('it'\''s')");
    EXPECT_EQ(ShellArgument(R"(a "b\")"), isWindows ? R"("a \"b\\\"")" : R"('a "b\"')");
    EXPECT_EQ(ShellArgument(R"(a b\)"), isWindows ? R"("a b\\")" : R"('a b\')");
}

} // namespace
} // namespace Bench
