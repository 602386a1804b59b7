#include "Tools/SarvexTool/Bench/Files/TypedLiteral.h"

#include "Modules/xFramework/Core/Classes/Value.h"
#include "Modules/xFramework/Utilities/Exception.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

/// Whether the client makes something else than a text of it.
bool IsOtherThanText(const std::string& text) {
    const Core::Value value(text);
    try {
        value.GetRef<std::string>();
        // A literal of the type string is a text too, but not the same one.
        return value.ToString() != text;
    } catch (...) {
        Utilities::TakeCaughtException();
        return true;
    }
}

TEST(TypedLiteralTest, IsWhatTheClientTakesForOne) {
    for (const std::string text : {"{int8:1}",
                                   "{uint8:1}",
                                   "{short:1}",
                                   "{int16:1}",
                                   "{uint16:0x10}",
                                   "{int:7}",
                                   "{int32:7}",
                                   "{uint32:7}",
                                   "{long:7}",
                                   "{int64:7}",
                                   "{uint64:7}",
                                   "{double:0.5}",
                                   "{bool:1}",
                                   "{string:AB}",
                                   "{int:x}",
                                   "{string:a:b}",
                                   "{int:}",
                                   "{nosuchtype:1}",
                                   "{int}",
                                   "{}",
                                   "{",
                                   "}",
                                   "",
                                   "int:7",
                                   "{int:7",
                                   "int:7}",
                                   " {int:7}",
                                   "{Int:7}",
                                   "{:7}",
                                   "{int :7}"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(IsTypedLiteral(text), IsOtherThanText(text));
    }
}

} // namespace
} // namespace Bench
