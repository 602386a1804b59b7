#include "Modules/xFramework/Core/Classes/Value.h"

#include "tests/Modules/xFramework/Core/Classes/LiveValue.h"
#include "tests/Modules/xFramework/Utilities/RaisedBy.h"
#include "tests/Support/TestMemory.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>

namespace {

using namespace Core;

template <typename T>
Value Make(T element) {
    Value value;
    value.GetMutableRef<T>() = std::move(element);
    return value;
}

Value Copy(const Value& value) {
    return value;
}

TEST(ValueTest, EmptyValuePrintsAsNothingAndHoldsNoObject) {
    const Value empty;
    EXPECT_EQ(empty.ToString(), "");
    EXPECT_EQ(empty.Get(), nullptr);
}

TEST(ValueTest, EmptyValueOrdersBelowEveryOtherAndNotBelowItsLike) {
    const Value empty;
    for (const Value& other : {Value(""), Make<Int>(-1), Make(false), Make(std::set<Value>{})}) {
        SCOPED_TRACE(other.ToString());
        EXPECT_TRUE(empty < other);
        EXPECT_FALSE(other < empty);
    }
    EXPECT_FALSE(empty < Value());
}

TEST(ValueTest, TextBecomesAStringValueUnchanged) {
    const Value value("-wifi-band $(x) ${1}");
    EXPECT_EQ(value.ToString(), "-wifi-band $(x) ${1}");
    EXPECT_EQ(value.GetRef<std::string>(), "-wifi-band $(x) ${1}");
}

TEST(ValueTest, EmptyTextIsAValueAndNotAnEmptyOne) {
    const Value value("");
    EXPECT_NE(value.Get(), nullptr);
    EXPECT_FALSE(Value() == std::string());
    EXPECT_TRUE(value == std::string());
}

TEST(ValueTest, CopySharesTheObject) {
    const Value value("text");
    const Value copy(value);
    EXPECT_EQ(copy.Get(), value.Get());
    EXPECT_EQ(value.Get()->GetRefCount(), 2);
}

TEST(ValueTest, CopyOfAnEmptyValueIsEmpty) {
    EXPECT_EQ(Copy(Value()).Get(), nullptr);
}

TEST(ValueTest, CopyAllocatesNothing) {
    const Value value(std::string(100, 'x'));
    const std::size_t before = TestSupport::CountRequests();
    const Value copy(value);
    Value assigned;
    assigned = copy;
    EXPECT_EQ(TestSupport::CountRequests(), before);
    // The count is at work: a new value is seen.
    const Value other(std::string(100, 'y'));
    EXPECT_GT(TestSupport::CountRequests(), before);
}

TEST(ValueTest, AssignmentOfAnEqualValueKeepsTheObjectAndItsType) {
    Value number = Make<Int>(5);
    const IValue* const object = number.Get();
    number = Value("5");
    EXPECT_EQ(number.Get(), object);
    EXPECT_EQ(number.GetRef<Int>(), 5);
}

TEST(ValueTest, AssignmentOfADifferentValueSharesItsObject) {
    struct {
        Value target;
        Value source;
    } const cases[] = {{Make<Int>(5), Value("6")}, {Make<Int>(6), Value("5")},
                       {Value("a"), Value("b")},   {Value("b"), Value("a")},
                       {Value(), Value("a")},      {Value("a"), Value()}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.target.ToString() + " from " + row.source.ToString());
        Value target;
        target.Set(row.target.Get());
        target = row.source;
        EXPECT_EQ(target.Get(), row.source.Get());
    }
}

TEST(ValueTest, AssignmentToItselfChangesNothing) {
    Value value("text");
    const IValue* const object = value.Get();
    const Value& same = value;
    value = same;
    EXPECT_EQ(value.Get(), object);
    EXPECT_EQ(object->GetRefCount(), 1);
}

TEST(ValueTest, TextThatTheTypeCanReadKeepsTheType) {
    Value value = Make<Int>(5);
    value = "0x1F";
    EXPECT_EQ(value.GetRef<Int>(), 31);
}

TEST(ValueTest, TextThatTheTypeCannotReadMakesAStringValue) {
    Value value = Make<Int>(5);
    value = "abc";
    EXPECT_EQ(value.GetRef<std::string>(), "abc");
}

TEST(ValueTest, SameTextLeavesASharedObjectShared) {
    Value value("text");
    const Value other(value);
    value = "text";
    EXPECT_EQ(value.Get(), other.Get());
}

TEST(ValueTest, EmptyTextReplacesTheObjectOfAStringValue) {
    Value value("text");
    value = "";
    EXPECT_EQ(value.GetRef<std::string>(), "");
}

TEST(ValueTest, TextOfItsOwnElementCanBeAssigned) {
    Value value("text");
    value = value.GetRef<std::string>();
    EXPECT_EQ(value.ToString(), "text");
}

TEST(ValueTest, TypedLiteralMakesAValueOfTheNamedType) {
    Value value;
    value = "{int:7}";
    EXPECT_EQ(value.GetRef<Int>(), 7);
    EXPECT_EQ(Value("{uint16:0x10}").GetRef<UInt16>(), 16);
    EXPECT_EQ(Value("{string:a:b}").GetRef<std::string>(), "a:b");
    EXPECT_EQ(Value("{long:5}").GetRef<Long>(), Long{5});
}

TEST(ValueTest, UnreadableTypedLiteralMakesADefaultElement) {
    EXPECT_EQ(Value("{int:x}").GetRef<Int>(), 0);
    EXPECT_EQ(Value("{long:0x10}").GetRef<Long>(), Long{0});
}

TEST(ValueTest, TextInBracesThatIsNoTypedLiteralStaysAText) {
    for (const char* const text : {"{int:}", "{nosuchtype:1}", "{int}", "{}", "{:1}", "{float:1}",
                                   "{char:1}", "{set:1}", "{int:7", "int:7}", " {int:7}", "{"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(Value(text).GetRef<std::string>(), text);
    }
}

TEST(ValueTest, TypedLiteralReplacesAnElementThatCannotReadIt) {
    Value value = Make<Int>(1);
    value = "{bool:1}";
    EXPECT_EQ(value.GetRef<bool>(), true);
}

TEST(ValueTest, StringValueReadsATypedLiteralAsText) {
    Value value("text");
    value = "{int:7}";
    EXPECT_EQ(value.GetRef<std::string>(), "{int:7}");
}

TEST(ValueTest, EqualityOfAStringValueWithTextIsByteExact) {
    const Value value("-remoteDaemon");
    EXPECT_TRUE(value == "-remoteDaemon");
    EXPECT_FALSE(value == "-remotedaemon");
    EXPECT_FALSE(value == "-remoteDaemon ");
    EXPECT_TRUE(value != "");
}

TEST(ValueTest, EqualityOfAStringValueWithATypedLiteralComparesTheTexts) {
    Value value("text");
    value = "{int:7}";
    EXPECT_TRUE(value == "{int:7}");
    EXPECT_FALSE(Value("7") == "{int:7}");
    EXPECT_TRUE(Make<Int>(7) == "{int:7}");
}

TEST(ValueTest, EqualityOfOtherValuesWithTextIsThatOfNeitherOrderingBelow) {
    const Value number = Make<Int>(5);
    EXPECT_TRUE(number == "5");
    EXPECT_FALSE(number == "6");
    EXPECT_FALSE(number == "4");
    EXPECT_FALSE(number == "5 ");
    EXPECT_TRUE(Make<Int>(31) == "0x1F");
    EXPECT_TRUE(Make(true) == "1");
}

TEST(ValueTest, ValuesAreEqualWhenNeitherOrdersBelow) {
    EXPECT_TRUE(Make<Int>(5) == Value("5"));
    EXPECT_FALSE(Make<Int>(5) == Value("6"));
    EXPECT_TRUE(Value() == Value());
}

TEST(ValueTest, RightSideDecidesTheOrder) {
    // As numbers 9 is below 10, as texts it is not.
    EXPECT_TRUE(Value("9") < Make<Int>(10));
    EXPECT_FALSE(Make<Int>(9) < Value("10"));
}

TEST(ValueTest, SetOrdersItsValues) {
    const std::set<Value> values{Value("b"), Value(), Value("a"), Value("b")};
    std::ostringstream text;
    for (const Value& value : values)
        text << "[" << value << "]";
    EXPECT_EQ(text.str(), "[][a][b]");
}

TEST(ValueTest, MutableReferenceOfAnotherTypeDiscardsTheOldElement) {
    Value value("7");
    EXPECT_EQ(value.GetMutableRef<Int>(), 0);
    EXPECT_EQ(value.ToString(), "0");
    EXPECT_EQ(Value().GetMutableRef<std::string>(), "");
    EXPECT_EQ(Value().GetMutableRef<bool>(), false);
}

TEST(ValueTest, SharedObjectIsClonedByTheFirstMutation) {
    Value value = Make<Int>(1);
    const Value other(value);
    value.GetMutableRef<Int>() = 2;
    EXPECT_EQ(value.GetRef<Int>(), 2);
    EXPECT_EQ(other.GetRef<Int>(), 1);
    EXPECT_EQ(other.Get()->GetRefCount(), 1);
    EXPECT_EQ(value.Get()->GetRefCount(), 1);
}

TEST(ValueTest, SharedObjectIsClonedBeforeItReadsAText) {
    Value value = Make<Int>(1);
    const Value other(value);
    value = "2";
    EXPECT_EQ(value.GetRef<Int>(), 2);
    EXPECT_EQ(other.GetRef<Int>(), 1);
}

TEST(ValueTest, UnsharedObjectIsMutatedInPlace) {
    Value value = Make<Int>(1);
    const IValue* const object = value.Get();
    value.GetMutableRef<Int>() = 2;
    EXPECT_EQ(value.Get(), object);
    EXPECT_EQ(value.GetRef<Int>(), 2);
    value = "3";
    EXPECT_EQ(value.Get(), object);
    EXPECT_EQ(value.GetRef<Int>(), 3);
}

TEST(ValueTest, ObjectLivesAsLongAsItsLastHolder) {
    {
        Value holder;
        {
            Value first;
            first.Set(new LiveValue(4));
            holder = first;
        }
        EXPECT_EQ(LiveObject::Alive(), 1);
        EXPECT_EQ(holder.ToString(), "4");
        holder.Set(holder.Get());
        EXPECT_EQ(LiveObject::Alive(), 1);
    }
    EXPECT_EQ(LiveObject::Alive(), 0);
}

TEST(ValueTest, EveryWayOfReplacingTheObjectDeletesTheOldOne) {
    struct {
        const char* name;
        void (*replace)(Value&);
    } const cases[] = {{"null", [](Value& value) { value.Set(nullptr); }},
                       {"other value", [](Value& value) { value = Value("b"); }},
                       {"empty value", [](Value& value) { value = Value(); }},
                       {"text", [](Value& value) { value = "b"; }},
                       {"other type", [](Value& value) { value.GetMutableRef<bool>(); }}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        Value value;
        value.Set(new LiveValue(4));
        EXPECT_EQ(LiveObject::Alive(), 1);
        row.replace(value);
        EXPECT_EQ(LiveObject::Alive(), 0);
    }
}

TEST(ValueTest, ReferenceOfAnotherTypeRaisesWithItsPlace) {
    const char* const raised = "Incompatible value type | "
                               "src/Modules/xFramework/Core/Classes/Value:122 | "
                               "Core::Value::GetRef";
    EXPECT_EQ(RaisedBy([] { Value("7").GetRef<Int>(); }), raised);
    EXPECT_EQ(RaisedBy([] { Make<Int>(7).GetRef<Long>(); }), raised);
    EXPECT_EQ(RaisedBy([] { Value().GetRef<std::string>(); }), raised);
}

/// Loses its type when it is cloned.
class Shapeless : public TypedValue<Int> {
public:
    std::unique_ptr<IValue> Clone() const override {
        return std::make_unique<TypedValue<std::string>>();
    }
};

TEST(ValueTest, MutableReferenceThatCannotBeHadRaisesWithItsPlace) {
    Value value;
    value.Set(new Shapeless);
    const Value other(value);
    EXPECT_EQ(RaisedBy([&value] { value.GetMutableRef<Int>(); }),
              "Incompatible value type | src/Modules/xFramework/Core/Classes/Value:133 | "
              "Core::Value::GetMutableRef");
}

} // namespace
