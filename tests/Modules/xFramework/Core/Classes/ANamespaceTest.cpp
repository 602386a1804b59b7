#include "Modules/xFramework/Core/Classes/ANamespace.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Core::ANamespace;

TEST(ANamespaceTest, NamesHoldLettersDigitsAndTheUnderscore) {
    std::string nameCharacters;
    for (int code = 0; code < 256; ++code) {
        if (ANamespace::IsNameChar(static_cast<char>(code)))
            nameCharacters += static_cast<char>(code);
    }
    EXPECT_EQ(nameCharacters, "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz");
}

TEST(ANamespaceTest, FirstNameIsSplitOffWithOneSeparator) {
    struct {
        const char* path;
        const char* name;
        const char* rest;
    } const cases[] = {
        {"a.b/c", "a", "b/c"}, {"b/c", "b", "c"},   {"c", "c", ""}, {"a.", "a", ""},
        {".a", "", "a"},       {"a..b", "a", ".b"}, {"", "", ""},   {"Name_1 x", "Name_1", "x"},
        {"\xE9x", "", "x"}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.path);
        std::string path = row.path;
        EXPECT_EQ(ANamespace::SplitFirstName(path), row.name);
        EXPECT_EQ(path, row.rest);
    }
}

} // namespace
