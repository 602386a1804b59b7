#include "Modules/xFramework/Core/Classes/MetaType.h"

#include "tests/Modules/xFramework/Utilities/ProviderGuard.h"

#include <gtest/gtest.h>

namespace {

using namespace Core;
using CoreTypes::FindMetaType;
using CoreTypes::MetaType;

TEST(MetaTypeTest, KnowsTheNamesThatItWasGiven) {
    MetaType<Int> metaType;
    for (const char* const name : {"b", "a", "b"})
        metaType.AddName(name);
    EXPECT_TRUE(metaType.HasName("a"));
    EXPECT_FALSE(metaType.HasName("A"));
    EXPECT_FALSE(metaType.HasName(""));
    EXPECT_EQ(metaType.GetNames(), (std::set<std::string>{"a", "b"}));
    metaType.RemoveName("a");
    EXPECT_FALSE(metaType.HasName("a"));
}

TEST(MetaTypeTest, DescribesObjectsOfItsElementTypeOnly) {
    const MetaType<Int> metaType;
    const TypedValue<Int> number;
    const TypedValue<Long> other;
    EXPECT_TRUE(metaType.Describes(&number));
    EXPECT_FALSE(metaType.Describes(&other));
    EXPECT_FALSE(metaType.Describes(nullptr));
}

TEST(MetaTypeTest, EveryNamedElementTypeHasOne) {
    for (const Value& value :
         {Value("{int8:1}"), Value("{uint8:1}"), Value("{short:1}"), Value("{uint16:1}"),
          Value("{int:1}"), Value("{uint32:1}"), Value("{long:1}"), Value("{int64:1}"),
          Value("{uint64:1}"), Value("{double:1}"), Value("{bool:1}"), Value("1")}) {
        const CoreTypes::IMetaType* const metaType = FindMetaType(value.Get());
        ASSERT_NE(metaType, nullptr);
        EXPECT_TRUE(metaType->Describes(value.Get()));
        EXPECT_EQ(metaType->ToText(value), value.ToString());
    }
}

TEST(MetaTypeTest, SetOfValuesAndEmptyValueHaveNone) {
    Value set;
    set.GetMutableRef<std::set<Value>>();
    EXPECT_EQ(FindMetaType(set.Get()), nullptr);
    EXPECT_EQ(FindMetaType(nullptr), nullptr);
}

TEST(MetaTypeTest, TextBecomesAValueOfTheType) {
    const MetaType<UInt16> metaType;
    Value value("text");
    EXPECT_TRUE(metaType.FromText("0x10", value));
    EXPECT_EQ(value.GetRef<UInt16>(), 16);
}

TEST(MetaTypeTest, TextMayBelongToTheValue) {
    Value value("17");
    EXPECT_TRUE(MetaType<Int>().FromText(value.GetRef<std::string>(), value));
    EXPECT_EQ(value.GetRef<Int>(), 17);
    Value text("a text that is too long to be stored in the string object itself");
    EXPECT_TRUE(MetaType<std::string>().FromText(text.GetRef<std::string>(), text));
    EXPECT_EQ(text.ToString(), "a text that is too long to be stored in the string object itself");
}

TEST(MetaTypeTest, UnreadableTextBecomesTheDefaultElement) {
    const MetaType<Int> metaType;
    Value value("{int:5}");
    EXPECT_FALSE(metaType.FromText("x", value));
    EXPECT_EQ(value.GetRef<Int>(), 0);
}

TEST(MetaTypeTest, OtherHoldersKeepTheirElement) {
    Value value("{int:5}");
    const Value other(value);
    EXPECT_TRUE(MetaType<Int>().FromText("6", value));
    EXPECT_EQ(other.GetRef<Int>(), 5);
}

void OneMore(std::string& text) {
    text += "1";
}

TEST(MetaTypeTest, StringProvidersRewriteATextOnceBeforeItIsRead) {
    const Utilities::ProviderGuard provider(OneMore);
    Value value;
    EXPECT_TRUE(MetaType<Int>().FromText("2", value));
    EXPECT_EQ(value.GetRef<Int>(), 21);
    EXPECT_TRUE(MetaType<std::string>().FromText("2", value));
    EXPECT_EQ(value.GetRef<std::string>(), "21");
}

} // namespace
