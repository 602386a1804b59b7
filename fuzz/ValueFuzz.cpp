// Property: every text makes the value that the rules say. A typed literal of a registered type
// makes one of that type, any other text a string that is the text. Integers are read as a plain
// reader of digits reads them. What a value of a named type writes, it reads back as the same
// element (a digit of the 8-bit character type reads as its number). A value equals its copies and,
// but for a string from a literal, the text that it was made from; it equals what was assigned to
// it, and does not change when a copy of it does.
//
// Input: texts, one record each.

#include "Modules/xFramework/Core/Classes/Value.h"
#include "Modules/xFramework/Core/Classes/ValueFactory.h"
#include "Modules/xFramework/Utilities/Singleton.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <string_view>

namespace {

using Core::Value;

constexpr const char* typeNames[] = {"int",  "long",  "short",  "string", "double",
                                     "bool", "uint8", "uint16", "uint32", "uint64",
                                     "int8", "int16", "int32",  "int64"};

bool IsTypeName(const std::string& name) {
    return std::ranges::find(typeNames, name) != std::end(typeNames);
}

Core::ValueFactory& Factory() {
    return Utilities::Singleton<Core::ValueFactory>::Instance();
}

Value Make(const std::string& typeName, const std::string& text) {
    Value value;
    value.Set(Factory().Create(typeName, text).release());
    return value;
}

bool IsOfType(const Value& value, const std::string& typeName) {
    static std::map<std::string, Value> samples;
    const auto [sample, isNew] = samples.try_emplace(typeName);
    if (isNew)
        sample->second = Make(typeName, "");
    return sample->second.Get()->IsSameType(value.Get());
}

// Typed literals

Core::TypedLiteral SplitPlainly(const std::string& text) {
    if (text.empty() || text.front() != '{' || text.back() != '}')
        return {text, ""};
    Core::TypedLiteral literal;
    const std::string inside(text.begin() + 1, text.end() - 1);
    literal.typeName = Split(inside, ':').front();
    if (literal.typeName.size() < inside.size())
        literal.valueText = inside.substr(literal.typeName.size() + 1);
    return literal;
}

void CheckLiteral(const std::string& text) {
    const Core::TypedLiteral expected = SplitPlainly(text);
    const Core::TypedLiteral split = Core::SplitTypedLiteral(text);
    CheckEqual(split.typeName, expected.typeName, "a literal's type name ends at the first colon");
    CheckEqual(split.valueText, expected.valueText, "a literal's value text follows the colon");

    const bool isTyped = !expected.valueText.empty() && IsTypeName(expected.typeName);
    CheckEqual(Factory().CanCreate(text), isTyped, "typed literals are recognised");
    const Value value(text);
    if (isTyped) {
        Check(IsOfType(value, expected.typeName), "a typed literal makes a value of its type");
        CheckEqual(value, Make(expected.typeName, expected.valueText),
                   "a typed literal is read as its type reads");
    } else {
        Check(IsOfType(value, "string"), "any other text makes a string");
        CheckEqual(value.ToString(), text, "a string is the text unchanged");
    }
}

// Integers

struct Number {
    bool isNegative = false;
    std::uint64_t magnitude = 0;
};

std::optional<unsigned> DigitValue(char character, unsigned base) {
    constexpr std::string_view digits = "0123456789abcdef";
    const bool isUpper = character >= 'A' && character <= 'F';
    const std::size_t digit =
        digits.find(isUpper ? static_cast<char>(character - 'A' + 'a') : character);
    return digit < base ? std::optional(static_cast<unsigned>(digit)) : std::nullopt;
}

/// The number that digits and nothing else make; nothing for no digit or more than 64 bits.
std::optional<std::uint64_t> ReadDigits(std::string_view text, unsigned base) {
    std::uint64_t number = 0;
    for (const char character : text) {
        const auto digit = DigitValue(character, base);
        if (!digit || number > (~std::uint64_t{0} - *digit) / base)
            return std::nullopt;
        number = number * base + *digit;
    }
    return text.empty() ? std::nullopt : std::optional(number);
}

/// White space, a sign and digits, as streams read a number.
std::optional<Number> ReadNumber(std::string_view text, unsigned base) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    Number number;
    number.isNegative = text.starts_with('-');
    if (text.starts_with('-') || text.starts_with('+'))
        text.remove_prefix(1);
    if (base == 16 && (text.starts_with("0x") || text.starts_with("0X")))
        text.remove_prefix(2);
    const auto magnitude = ReadDigits(text, base);
    if (!magnitude)
        return std::nullopt;
    number.magnitude = *magnitude;
    return number;
}

/// Nothing when the type cannot hold the number. A negative number becomes the unsigned one with
/// the same bits, in types that have more than 8.
template <typename T>
std::optional<T> Fit(const Number& number) {
    constexpr auto highest = static_cast<std::uint64_t>(std::numeric_limits<T>::max());
    const bool hasSign = std::numeric_limits<T>::is_signed;
    const bool isTooLow = sizeof(T) == 1 && !hasSign && number.isNegative && number.magnitude > 0;
    if (isTooLow || number.magnitude > highest + (hasSign && number.isNegative ? 1 : 0))
        return std::nullopt;
    const std::uint64_t bits = number.isNegative ? ~number.magnitude + 1 : number.magnitude;
    return static_cast<T>(bits);
}

template <typename T>
std::optional<T> ReadPlainly(const std::string& text) {
    const bool isHexadecimal = text.starts_with("0x");
    const auto number =
        isHexadecimal ? ReadNumber(std::string_view(text).substr(2), 16) : ReadNumber(text, 10);
    const std::optional<T> fitting = number ? Fit<T>(*number) : std::nullopt;
    const bool isCharacter = std::is_same_v<T, Core::Int8> && text.size() == 1;
    return !fitting && isCharacter ? std::optional(static_cast<T>(text.front())) : fitting;
}

template <typename T>
void CheckInteger(const char* typeName, const std::string& text) {
    const T expected = ReadPlainly<T>(text).value_or(T{});
    CheckEqual(+Make(typeName, text).GetRef<T>(), +expected, "an integer is read digit by digit");
}

void CheckIntegers(const std::string& text) {
    CheckInteger<Core::Int8>("int8", text);
    CheckInteger<Core::UInt8>("uint8", text);
    CheckInteger<Core::Int16>("int16", text);
    CheckInteger<Core::UInt16>("uint16", text);
    CheckInteger<Core::Int>("int32", text);
    CheckInteger<Core::UInt32>("uint32", text);
    CheckInteger<Core::Int64>("int64", text);
    CheckInteger<Core::UInt64>("uint64", text);
    const auto number = ReadNumber(text, 10);
    const auto expected = number ? Fit<Core::Int>(*number) : std::nullopt;
    CheckEqual(Make("long", text).GetRef<Core::Long>().value, expected.value_or(0),
               "a long reads no hexadecimal form");
}

// Round trips and invariants

/// What a value of the type becomes when it reads its own text.
std::string ReadBack(const std::string& typeName, const std::string& written) {
    const bool isDigit = written.size() == 1 && written[0] >= '0' && written[0] <= '9';
    if (typeName == "int8" && isDigit)
        return std::string(1, static_cast<char>(written[0] - '0'));
    return written;
}

void CheckRoundTrips(const std::string& text) {
    for (const std::string typeName : typeNames) {
        const std::string written = Make(typeName, text).ToString();
        CheckEqual(Make(typeName, written).ToString(), ReadBack(typeName, written),
                   "a value reads back what it wrote");
        const Value literal("{" + typeName + ":" + text + "}");
        Check(text.empty() || IsOfType(literal, typeName), "every named type has its literal");
    }
}

void CheckInvariants(const Value& value, const std::string& text) {
    const Value copy = value;
    // A string compares bytes, and so one that was made from a literal differs from the literal.
    const bool isText = !IsOfType(value, "string") || value.ToString() == text;
    CheckEqual(value == text, isText, "a value equals the text that it was made from");
    Check(value == copy && !(value < copy), "a value equals its copy");
    Check(value.Get() == copy.Get(), "a copy shares the object");
    Check(Value() < value && !(value < Value()), "an empty value is below every other");
}

void CheckPair(const std::string& first, const std::string& second) {
    const Value original(first);
    const Value other(second);
    Value assigned = original;
    assigned = other;
    Check(assigned == other, "a value equals what was assigned to it");
    Value changed = original;
    changed = second;
    CheckEqual(original.ToString(), Value(first).ToString(),
               "a value does not change with its copies");
    if (original.Get()->IsSameType(other.Get()))
        CheckEqual((original < other) + (other < original) + (original == other), 1,
                   "of two values of a type one is below the other or they are equal");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Each text makes some hundred values, and no property is about more than two texts.
    constexpr std::size_t mostTexts = 2;
    std::vector<std::string> texts = Split(ToText(data, size), RecordSeparator);
    texts.resize(std::min(texts.size(), mostTexts));
    for (const std::string& text : texts) {
        CheckLiteral(text);
        CheckIntegers(text);
        CheckRoundTrips(text);
        CheckInvariants(Value(text), text);
        CheckPair(texts.front(), text);
    }
    return 0;
}
