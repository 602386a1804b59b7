#pragma once

// Public, stable within a major version. For several threads as long as no variable changes, for
// $(name) in a text is expanded. A text that cannot be read is told by false, never thrown.

#include "Modules/xFramework/Core/Classes/ElementTypes.h"
#include "Modules/xFramework/Utilities/Format.h"

#include <limits>
#include <set>
#include <sstream>
#include <string>

/// How elements are written as text and read from it. Writing adds nothing and never fails;
/// reading leaves the element as it was when it fails.
namespace Core::ElementText {

/// By the stream's own operator with its default flags. For Int8 that is the operator of
/// characters: 65 is written as A. UInt8 below is written in digits; the difference is wanted.
template <typename T>
std::string Write(const T& element) {
    std::ostringstream out;
    out << element;
    return out.str();
}

inline std::string Write(const UInt8& element) {
    return Write(static_cast<UInt16>(element));
}

inline std::string Write(const std::string& element) {
    return element;
}

/// A set shows the texts of its elements in their order, separated by ", ". Nothing reads it back.
template <typename T>
std::string Write(const std::set<T>& element) {
    std::string text;
    const char* separator = "";
    for (const T& member : element) {
        text += separator + Write(member);
        separator = ", ";
    }
    return text;
}

/// Whether the rest of the stream, and all of it, is one element.
template <typename T>
bool ReadWhole(std::istream& in, T& element) {
    T read{};
    if ((in >> read).fail() || in.peek() != std::istream::traits_type::eof())
        return false;
    element = read;
    return true;
}

/// The 8-bit types are read as numbers, through a type that the streams do not take for characters.
template <typename T>
requires(sizeof(T) == 1) bool ReadSmallNumber(std::istream& in, T& element) {
    int number = 0;
    if (!ReadWhole(in, number) || number < std::numeric_limits<T>::min() ||
        number > std::numeric_limits<T>::max())
        return false;
    element = static_cast<T>(number);
    return true;
}

template <typename T>
bool Read(const std::string& text, T& element) {
    std::istringstream in(text);
    return ReadWhole(in, element);
}

inline bool Read(const std::string& text, UInt8& element) {
    std::istringstream in(text);
    return ReadSmallNumber(in, element);
}

/// A number from -128 to 127, or else one single character as Write has written it. A digit reads
/// as its number although Write uses it for 48 to 57: who types a digit means the number.
inline bool Read(const std::string& text, Int8& element) {
    std::istringstream in(text);
    if (ReadSmallNumber(in, element))
        return true;
    if (text.size() != 1)
        return false;
    element = static_cast<Int8>(text.front());
    return true;
}

/// A text is read as a message without arguments, so that its $(name) references are expanded.
inline bool Read(const std::string& text, std::string& element) {
    element = Utilities::Format(text).Text();
    return true;
}

/// Sets are made in code only.
template <typename T>
bool Read(const std::string&, std::set<T>&) {
    return false;
}

/// Reads what follows a "0x" prefix.
template <IntegerElement T>
bool ReadHex(const std::string& digits, T& element) {
    std::istringstream in(digits);
    in >> std::hex;
    if constexpr (sizeof(T) == 1)
        return ReadSmallNumber(in, element);
    else
        return ReadWhole(in, element);
}

} // namespace Core::ElementText
