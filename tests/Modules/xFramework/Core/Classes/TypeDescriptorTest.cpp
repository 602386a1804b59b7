#include "Modules/xFramework/Core/Classes/TypeDescriptor.h"

#include "tests/Modules/xFramework/Utilities/RaisedBy.h"

#include <gtest/gtest.h>

namespace {

using namespace Core;

Value SetOf(std::initializer_list<Value> elements) {
    Value set;
    set.GetMutableRef<std::set<Value>>() = elements;
    return set;
}

TEST(TypeDescriptorTest, CreatesADefaultValueOfItsType) {
    EXPECT_EQ(TypeDescriptor<Int>().CreateValue().GetRef<Int>(), 0);
    EXPECT_EQ(TypeDescriptor<std::string>().CreateValue().GetRef<std::string>(), "");
}

TEST(TypeDescriptorTest, IsACreatorOfValues) {
    TypeDescriptor<Int> descriptor;
    IClassCreator<IValue>& creator = descriptor;
    EXPECT_NE(dynamic_cast<TypedValue<Int>*>(creator.Create().get()), nullptr);
    EXPECT_NE(dynamic_cast<TypedValue<Int>*>(creator.CreateObject().get()), nullptr);
}

/// A descriptor and a plain creator in one.
class DescriptorAndCreator : public TypeDescriptor<Int>,
                             public ClassCreator<TypedValue<Int>, IValue> {
public:
    std::unique_ptr<IValue> Create() override { return TypeDescriptor<Int>::Create(); }
};

TEST(TypeDescriptorTest, SharesItsCreatorAndItsRootWithOtherBases) {
    DescriptorAndCreator object;
    ITypeDescriptor* const descriptor = &object;
    ClassCreator<TypedValue<Int>, IValue>* const creator = &object;
    EXPECT_EQ(static_cast<IClassCreator<IValue>*>(descriptor),
              static_cast<IClassCreator<IValue>*>(creator));
    EXPECT_EQ(static_cast<IClassCreator<>*>(descriptor), static_cast<IClassCreator<>*>(creator));
    EXPECT_EQ(static_cast<IInterface*>(descriptor), static_cast<IInterface*>(creator));
}

TEST(TypeDescriptorTest, ConvertsASetByReadingTheTextsOfOtherElements) {
    const Value converted =
        TypeDescriptor<Int>().ConvertSet(SetOf({Value("{int:3}"), Value("4"), Value("{uint8:7}")}));
    EXPECT_EQ(converted.GetRef<std::set<Int>>(), (std::set<Int>{3, 4, 7}));
}

TEST(TypeDescriptorTest, UnreadableElementsOfASetBecomeTheDefault) {
    const Value converted =
        TypeDescriptor<Int>().ConvertSet(SetOf({Value("a"), Value("b"), Value("4")}));
    EXPECT_EQ(converted.GetRef<std::set<Int>>(), (std::set<Int>{0, 4}));
}

TEST(TypeDescriptorTest, ConvertedSetLeavesTheSourceAsItIs) {
    const Value source = SetOf({Value("4"), Value()});
    TypeDescriptor<Int>().ConvertSet(source);
    EXPECT_EQ(source.ToString(), ", 4");
    const auto& elements = source.GetRef<std::set<Value>>();
    EXPECT_EQ(elements.begin()->Get(), nullptr);
    EXPECT_EQ(elements.rbegin()->GetRef<std::string>(), "4");
}

TEST(TypeDescriptorTest, SetConversionOfAnythingElseRaises) {
    EXPECT_EQ(RaisedBy([] { TypeDescriptor<Int>().ConvertSet(Value("4")); }),
              "Incompatible value type | src/Modules/xFramework/Core/Classes/Value:122 | "
              "Core::Value::GetRef");
}

} // namespace
