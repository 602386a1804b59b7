#include "Modules/xFramework/Core/Classes/TypedValue.h"

#include "Modules/xFramework/Core/Classes/Value.h"

#include <gtest/gtest.h>

namespace {

using namespace Core;

std::string TextOf(const IValue& value) {
    std::string text = "to be replaced";
    EXPECT_EQ(&value.ToString(text), &text);
    return text;
}

template <typename T>
concept CanBeHeld = requires(Value& value) {
    value.GetRef<T>();
    value.GetMutableRef<T>();
};

static_assert(CanBeHeld<Int> && CanBeHeld<Long> && CanBeHeld<std::set<Value>>);
static_assert(CanBeHeld<std::set<Int>> && CanBeHeld<std::set<std::string>>);
// The language's long is std::int64_t on Linux and none of the element types anywhere.
static_assert(!CanBeHeld<long> && !CanBeHeld<unsigned long>);
static_assert(!CanBeHeld<char> && !CanBeHeld<float> && !CanBeHeld<const Int>);
static_assert(!CanBeHeld<std::set<long>> && !CanBeHeld<std::set<std::set<Int>>>);

template <typename T>
bool OffersIntegerInterface() {
    const TypedValue<T> value;
    return dynamic_cast<const IIntegerValue*>(static_cast<const IValue*>(&value)) != nullptr;
}

TEST(TypedValueTest, OneObjectHasOneValueInterfaceAndOneRoot) {
    TypedValue<Int> object;
    ITypedValue<Int>* const typed = &object;
    IIntegerValue* const integer = &object;
    EXPECT_EQ(static_cast<IValue*>(typed), static_cast<IValue*>(integer));
    EXPECT_EQ(static_cast<IInterface*>(typed), static_cast<IInterface*>(integer));
    EXPECT_EQ(static_cast<Utilities::IObject*>(typed), static_cast<Utilities::IObject*>(integer));
}

TEST(TypedValueTest, TheEightIntegerTypesOfferTheIntegerInterface) {
    EXPECT_TRUE(OffersIntegerInterface<Int8>());
    EXPECT_TRUE(OffersIntegerInterface<UInt8>());
    EXPECT_TRUE(OffersIntegerInterface<Int16>());
    EXPECT_TRUE(OffersIntegerInterface<UInt16>());
    EXPECT_TRUE(OffersIntegerInterface<Int>());
    EXPECT_TRUE(OffersIntegerInterface<UInt32>());
    EXPECT_TRUE(OffersIntegerInterface<Int64>());
    EXPECT_TRUE(OffersIntegerInterface<UInt64>());
}

TEST(TypedValueTest, LongAndTheOthersDoNotOfferTheIntegerInterface) {
    EXPECT_FALSE(OffersIntegerInterface<Long>());
    EXPECT_FALSE(OffersIntegerInterface<double>());
    EXPECT_FALSE(OffersIntegerInterface<bool>());
    EXPECT_FALSE(OffersIntegerInterface<std::string>());
    EXPECT_FALSE(OffersIntegerInterface<std::set<Value>>());
}

TEST(TypedValueTest, IntegerReadsTheHexadecimalForm) {
    TypedValue<Int> value;
    EXPECT_TRUE(value.FromString("0x1F"));
    EXPECT_EQ(value.GetRef(), 31);
    EXPECT_TRUE(value.FromHexString("20"));
    EXPECT_EQ(value.GetRef(), 32);
    EXPECT_FALSE(value.FromHexString("2G"));
    for (const char* const refused : {"0x", "0X1F"}) {
        SCOPED_TRACE(refused);
        EXPECT_FALSE(value.FromString(refused));
        EXPECT_EQ(value.GetRef(), 32);
    }
}

// The stream operator's way: it negates within the type.
TEST(TypedValueTest, UnsignedTypesReadANegativeNumberFromTheirUpperEnd) {
    TypedValue<UInt32> wide;
    EXPECT_TRUE(wide.FromString("-1"));
    EXPECT_EQ(wide.GetRef(), 4294967295U);
    TypedValue<UInt16> narrow;
    EXPECT_TRUE(narrow.FromString("-1"));
    EXPECT_EQ(narrow.GetRef(), 65535U);
}

TEST(TypedValueTest, LongReadsNoHexadecimalForm) {
    TypedValue<Long> value(Long{5});
    EXPECT_FALSE(value.FromString("0x1F"));
    EXPECT_EQ(value.GetRef(), Long{5});
    EXPECT_TRUE(value.FromString("31"));
    EXPECT_EQ(value.GetRef(), Long{31});
}

TEST(TypedValueTest, EmptyTextIsNeverReadNotEvenByAString) {
    TypedValue<std::string> text("kept");
    EXPECT_FALSE(text.FromString(""));
    EXPECT_EQ(text.GetRef(), "kept");
    TypedValue<Int> number(4);
    EXPECT_FALSE(number.FromString(""));
    EXPECT_EQ(number.GetRef(), 4);
}

TEST(TypedValueTest, FailedReadingLeavesTheElement) {
    TypedValue<Int> value(8);
    EXPECT_FALSE(value.FromString("9abc"));
    EXPECT_EQ(value.GetRef(), 8);
}

TEST(TypedValueTest, CloneOwnsACopyThatNobodyHoldsYet) {
    std::string storage = "first";
    TypedRefValue<std::string> original(&storage);
    original.AddRef();
    const std::unique_ptr<IValue> clone = original.Clone();
    storage = "second";
    EXPECT_EQ(TextOf(original), "second");
    EXPECT_EQ(TextOf(*clone), "first");
    EXPECT_EQ(clone->GetRefCount(), 0);
    EXPECT_NE(dynamic_cast<TypedValue<std::string>*>(clone.get()), nullptr);
}

TEST(TypedValueTest, TheFurtherCloningEntriesGiveTheSameCopy) {
    const TypedValue<Int> original(6);
    const std::unique_ptr<IInterface> asInterface = original.CloneInterface();
    const std::unique_ptr<Utilities::IObject> asObject = original.CloneObject();
    EXPECT_EQ(dynamic_cast<TypedValue<Int>&>(*asInterface).GetRef(), 6);
    EXPECT_EQ(dynamic_cast<TypedValue<Int>&>(*asObject).GetRef(), 6);
}

TEST(TypedValueTest, ReferenceValueWorksOnStorageOwnedElsewhere) {
    Int storage = 1;
    TypedRefValue<Int> value(&storage);
    value.FromString("2");
    EXPECT_EQ(storage, 2);
    value.GetMutableRef() = 3;
    EXPECT_EQ(storage, 3);
}

TEST(TypedValueTest, CountStartsAt0AndReleaseDeletesNothing) {
    TypedValue<Int> value;
    EXPECT_EQ(value.GetRefCount(), 0);
    EXPECT_EQ(value.AddRef(), 1);
    EXPECT_EQ(value.AddRef(), 2);
    EXPECT_EQ(value.Release(), 1);
    EXPECT_EQ(value.Release(), 0);
    EXPECT_EQ(value.GetRefCount(), 0);
}

TEST(TypedValueTest, SameTypeIsAskedOfTheElementType) {
    Int storage = 0;
    const TypedValue<Int> value;
    const TypedRefValue<Int> reference(&storage);
    const TypedValue<Long> other;
    EXPECT_TRUE(value.IsSameType(&reference));
    EXPECT_FALSE(value.IsSameType(&other));
    EXPECT_FALSE(value.IsSameType(nullptr));
}

TEST(TypedValueTest, EverythingIsGreaterThanNullAndNothingEqualsIt) {
    const TypedValue<Int> value(-5);
    const IValue* const null = nullptr;
    EXPECT_TRUE(value.IsGreater(null));
    EXPECT_FALSE(value.IsEqual(null));
}

struct CrossTypeCase {
    const char* left;
    const char* right;
    bool isEqual;
    bool isGreater;
};

template <typename Left, typename Right, std::size_t Count>
void CheckComparisons(const CrossTypeCase (&cases)[Count]) {
    for (const CrossTypeCase& row : cases) {
        SCOPED_TRACE(std::string(row.left) + " with " + row.right);
        TypedValue<Left> left;
        TypedValue<Right> right;
        left.FromString(row.left);
        right.FromString(row.right);
        const IValue* const other = &right;
        EXPECT_EQ(left.IsEqual(other), row.isEqual);
        EXPECT_EQ(left.IsGreater(other), row.isGreater);
    }
}

TEST(TypedValueTest, SameTypesAreComparedAsElements) {
    const CrossTypeCase cases[] = {
        {"9", "10", false, false}, {"10", "9", false, true}, {"9", "9", true, false}};
    CheckComparisons<Int, Int>(cases);
}

TEST(TypedValueTest, OtherTypesAreComparedAsElementsWhenTheirTextCanBeRead) {
    const CrossTypeCase cases[] = {{"9", "10", false, false},
                                   {"10", "9", false, true},
                                   {"31", "0x1F", true, false},
                                   {"5", "05", true, false}};
    CheckComparisons<Int, std::string>(cases);
}

TEST(TypedValueTest, OtherTypesAreComparedAsTextsWhenTheirTextCannotBeRead) {
    const CrossTypeCase cases[] = {
        {"9", "10x", false, true}, {"10", "9x", false, false}, {"5", "5 ", false, false}};
    CheckComparisons<Int, std::string>(cases);
}

TEST(TypedValueTest, EqualTextsThatCannotBeReadAreEqual) {
    TypedValue<std::set<Value>> set;
    set.GetMutableRef() = {Value("a"), Value("b")};
    struct {
        const char* text;
        bool isEqual;
        bool isGreater;
    } const cases[] = {
        {"a, b", true, false}, {"a, c", false, false}, {"a, a", false, true}, {"", false, true}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.text);
        const TypedValue<std::string> text(row.text);
        const IValue* const other = &text;
        EXPECT_EQ(set.IsEqual(other), row.isEqual);
        EXPECT_EQ(set.IsGreater(other), row.isGreater);
    }
}

TEST(TypedValueTest, AStringReadsEveryTextAndSoComparesTexts) {
    const CrossTypeCase cases[] = {{"9", "10", false, true}, {"10", "10", true, false}};
    CheckComparisons<std::string, Int>(cases);
}

TEST(TypedValueTest, TextsAreComparedAsUnsignedBytes) {
    const CrossTypeCase cases[] = {{"\xE9", "z", false, true}, {"z", "\xE9", false, false}};
    CheckComparisons<std::string, std::string>(cases);
}

TEST(TypedValueTest, EmptyTextOfAnotherTypeIsComparedAsText) {
    const TypedValue<Int> number(0);
    const TypedValue<std::string> empty;
    const IValue* const other = &empty;
    EXPECT_FALSE(number.IsEqual(other));
    EXPECT_TRUE(number.IsGreater(other));
}

TEST(TypedValueTest, AssignCopiesTheElementOfTheSameTypeAndReturnsTheView) {
    TypedValue<Int> target(1);
    const TypedValue<Int> source(2);
    EXPECT_EQ(target.Assign(source), static_cast<const IValue*>(&source));
    EXPECT_EQ(target.GetRef(), 2);
}

TEST(TypedValueTest, AssignNeverConverts) {
    TypedValue<Int> target(1);
    const TypedValue<std::string> source("2");
    EXPECT_EQ(target.Assign(source), nullptr);
    EXPECT_EQ(target.GetRef(), 1);
}

/// Gives the view of another object, or of none.
class Viewing : public TypedValue<Int> {
public:
    explicit Viewing(const ITypedValue<Int>* view) : TypedValue(-1), m_view(view) {}
    const ITypedValue<Int>* GetView() const override { return m_view; }

private:
    const ITypedValue<Int>* m_view;
};

TEST(TypedValueTest, AssignReadsThroughTheOthersOwnView) {
    TypedValue<Int> target(1);
    const TypedValue<Int> viewed(7);
    EXPECT_EQ(target.Assign(Viewing(&viewed)), static_cast<const IValue*>(&viewed));
    EXPECT_EQ(target.GetRef(), 7);
    EXPECT_EQ(target.Assign(Viewing(nullptr)), nullptr);
    EXPECT_EQ(target.GetRef(), 7);
}

TEST(TypedValueTest, SetOfValuesIsAFullValue) {
    TypedValue<std::set<Value>> set;
    set.GetMutableRef().insert({Value("b"), Value("a")});
    const std::unique_ptr<IValue> clone = set.Clone();
    EXPECT_EQ(TextOf(set), "a, b");
    EXPECT_TRUE(set.IsEqual(clone.get()));
    EXPECT_FALSE(set.IsGreater(clone.get()));
    EXPECT_FALSE(set.FromString("c"));
    set.GetMutableRef().insert(Value("c"));
    EXPECT_FALSE(set.IsEqual(clone.get()));
    EXPECT_TRUE(set.IsGreater(clone.get()));
}

/// Two texts that the type reads and writes, the lower one first.
template <typename T>
struct Samples {
    static constexpr const char* lower = "8";
    static constexpr const char* higher = "12";
};
template <>
struct Samples<Int8> {
    static constexpr const char* lower = "A";
    static constexpr const char* higher = "z";
};
template <>
struct Samples<bool> {
    static constexpr const char* lower = "0";
    static constexpr const char* higher = "1";
};
template <>
struct Samples<std::string> {
    static constexpr const char* lower = "10";
    static constexpr const char* higher = "9";
};

template <typename T>
class TypedValueEachTypeTest : public testing::Test {
protected:
    TypedValueEachTypeTest() {
        EXPECT_TRUE(m_lower.FromString(Samples<T>::lower));
        EXPECT_TRUE(m_higher.FromString(Samples<T>::higher));
    }

    TypedValue<T> m_lower;
    TypedValue<T> m_higher;
};

using NamedTypes = testing::Types<Int8, UInt8, Int16, UInt16, Int, UInt32, Long, Int64, UInt64,
                                  double, bool, std::string>;
TYPED_TEST_SUITE(TypedValueEachTypeTest, NamedTypes);

TYPED_TEST(TypedValueEachTypeTest, WritesTheTextThatItHasRead) {
    EXPECT_EQ(TextOf(this->m_lower), Samples<TypeParam>::lower);
    EXPECT_EQ(TextOf(this->m_higher), Samples<TypeParam>::higher);
}

TYPED_TEST(TypedValueEachTypeTest, IsOrderedByItsElements) {
    const IValue& lower = this->m_lower;
    const IValue& higher = this->m_higher;
    EXPECT_TRUE(higher.IsGreater(&lower));
    EXPECT_FALSE(lower.IsGreater(&higher));
    EXPECT_FALSE(lower.IsGreater(&lower));
    EXPECT_FALSE(lower.IsEqual(&higher));
    EXPECT_TRUE(lower.IsSameType(&higher));
}

TYPED_TEST(TypedValueEachTypeTest, EqualsTheStringThatHoldsItsText) {
    const TypedValue<std::string> text(Samples<TypeParam>::lower);
    const IValue& lower = this->m_lower;
    EXPECT_TRUE(lower.IsEqual(&text));
    EXPECT_FALSE(lower.IsGreater(&text));
}

TYPED_TEST(TypedValueEachTypeTest, IsClonedAndAssigned) {
    const IValue& higher = this->m_higher;
    const std::unique_ptr<IValue> clone = this->m_lower.Clone();
    EXPECT_TRUE(clone->IsSameType(&higher));
    EXPECT_EQ(TextOf(*clone), Samples<TypeParam>::lower);
    EXPECT_EQ(clone->Assign(higher), &higher);
    EXPECT_EQ(TextOf(*clone), Samples<TypeParam>::higher);
    EXPECT_EQ(TextOf(this->m_lower), Samples<TypeParam>::lower);
}

} // namespace
