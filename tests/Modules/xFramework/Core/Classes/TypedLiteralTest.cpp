#include "Modules/xFramework/Core/Classes/TypedLiteral.h"

#include <gtest/gtest.h>

namespace {

TEST(TypedLiteral, IsSplitAtTheFirstColonInTheBraces) {
    struct {
        const char* text;
        const char* typeName;
        const char* valueText;
    } const cases[] = {{"{int:7}", "int", "7"},
                       {"{string:a:b}", "string", "a:b"},
                       {"{int:}", "int", ""},
                       {"{int}", "int", ""},
                       {"{:7}", "", "7"},
                       {"{}", "", ""},
                       {"", "", ""},
                       {"int:7", "int:7", ""},
                       {"{int:7", "{int:7", ""},
                       {"int:7}", "int:7}", ""},
                       {"{", "{", ""},
                       {"}", "}", ""},
                       {"{ int : 7 }", " int ", " 7 "},
                       {"{{int:7}}", "{int", "7}"}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.text);
        const Core::TypedLiteral literal = Core::SplitTypedLiteral(row.text);
        EXPECT_EQ(literal.typeName, row.typeName);
        EXPECT_EQ(literal.valueText, row.valueText);
    }
}

} // namespace
