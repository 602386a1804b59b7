#pragma once

// Public, stable within a major version. Plain types for any thread.

#include <compare>
#include <concepts>
#include <cstdint>
#include <istream>
#include <ostream>
#include <set>
#include <string>
#include <type_traits>

namespace Core {

/// The element type "long": 32 bits wide on every platform, whatever the language's long is there,
/// and a type of its own beside Int. It reads no "0x" form and offers no IIntegerValue; that is how
/// values of the type have always behaved, so it is not to be brought into line with Int.
struct Long {
    std::int32_t value = 0;

    friend bool operator==(const Long& left, const Long& right) {
        return left.value == right.value;
    }
    friend std::strong_ordering operator<=>(const Long& left, const Long& right) {
        return left.value <=> right.value;
    }
    friend std::ostream& operator<<(std::ostream& out, const Long& element) {
        return out << element.value;
    }
    // cppcheck-suppress constParameter ; it is read into
    friend std::istream& operator>>(std::istream& in, Long& element) { return in >> element.value; }
};

// The integer element types. They are named by these aliases and never by the language's names: on
// Linux std::int64_t is long, on Windows long long, and the thirteen element types have to be the
// same thirteen, and distinct, on both.
using Int8 = signed char;
using UInt8 = unsigned char;
using Int16 = short;
using UInt16 = unsigned short;
using Int = int;
using UInt32 = unsigned int;
using Int64 = long long;
using UInt64 = unsigned long long;

static_assert(sizeof(Int16) == 2 && sizeof(Int) == 4 && sizeof(Int64) == 8 && sizeof(Long) == 4);

template <typename T, typename... Others>
concept OneOf = (std::same_as<T, Others> || ...);

/// The element types whose values offer IIntegerValue. Long is none of them, see there.
template <typename T>
concept IntegerElement = OneOf<T, Int8, UInt8, Int16, UInt16, Int, UInt32, Int64, UInt64>;

/// The element types that have a type name.
template <typename T>
concept NamedElement = IntegerElement<T> || OneOf<T, Long, double, bool, std::string>;

class Value;

template <typename T>
struct IsElementSet : std::false_type {};

template <typename T>
requires(NamedElement<T> || std::same_as<T, Value>) struct IsElementSet<std::set<T>>
    : std::true_type {
};

/// What a value can hold: the thirteen element types and the sets that a set of values is converted
/// to. Any other type, such as std::int64_t where that is long, is an error of the compiler rather
/// than one more element type.
template <typename T>
concept ValueElement = NamedElement<T> || IsElementSet<T>::value;

} // namespace Core
