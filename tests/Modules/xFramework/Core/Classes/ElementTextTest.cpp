#include "Modules/xFramework/Core/Classes/ElementText.h"

#include <gtest/gtest.h>

namespace {

using namespace Core;

TEST(ElementTextTest, SignedByteIsWrittenAsItsCharacterAndUnsignedByteInDigits) {
    EXPECT_EQ(ElementText::Write(Int8{65}), "A");
    EXPECT_EQ(ElementText::Write(UInt8{65}), "65");
}

TEST(ElementTextTest, NumbersAreWrittenAsStreamsWriteThem) {
    EXPECT_EQ(ElementText::Write(Int{-7}), "-7");
    EXPECT_EQ(ElementText::Write(UInt64{18446744073709551615U}), "18446744073709551615");
    EXPECT_EQ(ElementText::Write(Long{5}), "5");
    EXPECT_EQ(ElementText::Write(0.1), "0.1");
    EXPECT_EQ(ElementText::Write(1234567.0), "1.23457e+06");
    EXPECT_EQ(ElementText::Write(true), "1");
}

TEST(ElementTextTest, SetIsWrittenAsItsElementsInOrder) {
    EXPECT_EQ(ElementText::Write(std::set<Int>{3, 1, 2}), "1, 2, 3");
    EXPECT_EQ(ElementText::Write(std::set<std::string>{"", "a"}), ", a");
    EXPECT_EQ(ElementText::Write(std::set<Int>{}), "");
}

TEST(ElementTextTest, SetIsNeverRead) {
    std::set<Int> element{4};
    EXPECT_FALSE(ElementText::Read("1, 2", element));
    EXPECT_EQ(element, std::set<Int>{4});
}

template <typename T>
struct ReadCase {
    const char* text;
    bool succeeds;
    T result;
};

template <typename T, std::size_t Count>
void CheckReading(const ReadCase<T> (&cases)[Count], T untouched) {
    for (const ReadCase<T>& row : cases) {
        SCOPED_TRACE(row.text);
        T element = untouched;
        EXPECT_EQ(ElementText::Read(row.text, element), row.succeeds);
        EXPECT_EQ(element, row.succeeds ? row.result : untouched);
    }
}

TEST(ElementTextTest, NumberIsReadFromTheWholeTextOnly) {
    const ReadCase<Int> cases[] = {{"12", true, 12},  {"-12", true, -12},       {"+3", true, 3},
                                   {" 12", true, 12}, {"12abc", false, 0},      {"12 ", false, 0},
                                   {"abc", false, 0}, {"2147483648", false, 0}, {"0x1F", false, 0}};
    CheckReading<Int>(cases, 99);
}

TEST(ElementTextTest, DoubleAndBoolAreReadAsStreamsReadThem) {
    const ReadCase<double> doubles[] = {
        {"0.5", true, 0.5}, {"1e3", true, 1000.0}, {"1.5x", false, 0.0}};
    CheckReading<double>(doubles, 99.0);
    const ReadCase<bool> bools[] = {{"1", true, true}, {"0", true, false}, {"true", false, false}};
    CheckReading<bool>(bools, true);
}

TEST(ElementTextTest, UnsignedByteIsReadAsNumberFrom0To255) {
    const ReadCase<UInt8> cases[] = {
        {"0", true, 0}, {"255", true, 255}, {"256", false, 0}, {"-1", false, 0}, {"A", false, 0}};
    CheckReading<UInt8>(cases, 99);
}

TEST(ElementTextTest, SignedByteIsReadAsNumberOrElseAsOneCharacter) {
    const ReadCase<Int8> cases[] = {{"-128", true, -128}, {"127", true, 127}, {"128", false, 0},
                                    {"A", true, 65},      {" ", true, 32},    {"5", true, 5},
                                    {"AB", false, 0}};
    CheckReading<Int8>(cases, 99);
}

TEST(ElementTextTest, HexadecimalDigitsAreReadWithinTheRangeOfTheType) {
    struct {
        const char* digits;
        bool fitsByte;
        bool fitsInt;
    } const cases[] = {{"7F", true, true},         {"7f", true, true},  {"FF", false, true},
                       {"7FFFFFFF", false, true},  {"", false, false},  {"G", false, false},
                       {"FFFFFFFF", false, false}, {"1 ", false, false}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.digits);
        Int8 byte = 0;
        Int number = 0;
        EXPECT_EQ(ElementText::ReadHex(row.digits, byte), row.fitsByte);
        EXPECT_EQ(ElementText::ReadHex(row.digits, number), row.fitsInt);
    }
    UInt64 largest = 0;
    EXPECT_TRUE(ElementText::ReadHex("FFFFFFFFFFFFFFFF", largest));
    EXPECT_EQ(largest, 18446744073709551615U);
}

} // namespace
