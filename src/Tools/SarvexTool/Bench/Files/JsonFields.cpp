#include "Tools/SarvexTool/Bench/Files/JsonFields.h"

#include "Tools/SarvexTool/Bench/Core/Utf8.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace Bench {

namespace {

constexpr std::string_view base64Digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t bytesOfGroup = 3;
constexpr std::size_t digitsOfGroup = 4;
constexpr unsigned bitsOfDigit = 6;
constexpr unsigned bitsOfByte = 8;
constexpr unsigned bitsOfGroup = 24;

void AppendGroup(std::string& text, std::string_view bytes) {
    std::uint32_t bits = 0;
    for (std::size_t index = 0; index < bytesOfGroup; ++index)
        bits = bits << bitsOfByte |
               (index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0U);
    for (std::size_t index = 0; index < digitsOfGroup; ++index) {
        bits <<= bitsOfDigit;
        text += index > bytes.size()
                    ? '='
                    : base64Digits[bits >> bitsOfGroup & (base64Digits.size() - 1)];
    }
}

/// The bits of one to four digits at the high end of a group; nothing when one is no digit.
std::optional<std::uint32_t> BitsOf(std::string_view group) {
    std::uint32_t bits = 0;
    for (std::size_t index = 0; index < digitsOfGroup; ++index) {
        const std::size_t digit = index < group.size() ? base64Digits.find(group[index]) : 0;
        if (digit == std::string_view::npos)
            return std::nullopt;
        bits = bits << bitsOfDigit | static_cast<std::uint32_t>(digit);
    }
    return bits;
}

constexpr const char* base64Suffix = "Base64";
constexpr const char* base64Key = "base64";

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const Utf8Character character = FirstCharacter(text);
        if (!character.isValid)
            return false;
        text.remove_prefix(character.size);
    }
    return true;
}

[[noreturn]] void Fail(const std::string& key, const char* what) {
    throw WrongJson("the value of \"" + key + "\" is " + what);
}

std::string TextOf(const Json& value, const std::string& key) {
    if (!value.is_string())
        Fail(key, "no text");
    return value.get<std::string>();
}

std::string BytesOf(const Json& value, const std::string& key) {
    const std::optional<std::string> bytes = FromBase64(TextOf(value, key));
    if (!bytes)
        Fail(key, "no base64");
    return *bytes;
}

} // namespace

std::string ToBase64(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + bytesOfGroup - 1) / bytesOfGroup * digitsOfGroup);
    while (!bytes.empty()) {
        const std::string_view group = bytes.substr(0, bytesOfGroup);
        AppendGroup(text, group);
        bytes.remove_prefix(group.size());
    }
    return text;
}

std::optional<std::string> FromBase64(std::string_view text) {
    const std::string_view whole = text;
    const std::size_t fill = text.size() - std::min(text.find_last_not_of('=') + 1, text.size());
    text.remove_suffix(fill);
    std::string bytes;
    while (!text.empty()) {
        const std::string_view group = text.substr(0, digitsOfGroup);
        const std::optional<std::uint32_t> bits = BitsOf(group);
        if (!bits || group.size() == 1)
            return std::nullopt;
        for (unsigned index = 0; index + 1 < group.size(); ++index)
            bytes += static_cast<char>(
                static_cast<unsigned char>(*bits >> (bitsOfGroup - bitsOfByte * (index + 1))));
        text.remove_prefix(group.size());
    }
    // Only one text stands for the bytes: other fillings and left-over bits are refused.
    return ToBase64(bytes) == whole ? std::optional(bytes) : std::nullopt;
}

std::string LineOf(const Json& json) {
    constexpr int inOneLine = -1;
    return json.dump(inOneLine, ' ', true) + "\n";
}

void PutText(Json& object, const std::string& key, const std::string& bytes) {
    if (IsUtf8(bytes))
        object[key] = bytes;
    else
        object[key + base64Suffix] = ToBase64(bytes);
}

void PutTexts(Json& object, const std::string& key, const std::vector<std::string>& texts) {
    Json list = Json::array();
    for (const std::string& text : texts)
        list.push_back(IsUtf8(text) ? Json(text) : Json{{base64Key, ToBase64(text)}});
    object[key] = std::move(list);
}

JsonFields JsonFields::Parse(std::string_view text) {
    constexpr bool throwsErrors = false;
    Json json = Json::parse(text, nullptr, throwsErrors);
    if (!json.is_object())
        throw WrongJson("there is no object of JSON");
    return JsonFields(std::move(json));
}

bool JsonFields::Has(const std::string& key) const {
    for (const std::string& name : {key, key + base64Suffix}) {
        const auto found = m_json.find(name);
        if (found != m_json.end() && !found->is_null())
            return true;
    }
    return false;
}

bool JsonFields::Flag(const std::string& key) const {
    const Json& value = At(key);
    if (!value.is_boolean())
        Fail(key, "neither true nor false");
    return value.get<bool>();
}

std::uint64_t JsonFields::Count(const std::string& key) const {
    const Json& value = At(key);
    if (!value.is_number_unsigned())
        Fail(key, "no count");
    return value.get<std::uint64_t>();
}

std::uint32_t JsonFields::Line(const std::string& key) const {
    const std::uint64_t count = Count(key);
    if (count > std::numeric_limits<std::uint32_t>::max())
        Fail(key, "no line's number");
    return static_cast<std::uint32_t>(count);
}

std::int32_t JsonFields::Integer(const std::string& key) const {
    const Json& value = At(key);
    const bool isWhole = value.is_number_integer() &&
                         (!value.is_number_unsigned() ||
                          value.get<std::uint64_t>() <= std::numeric_limits<std::int32_t>::max());
    if (!isWhole || value.get<std::int64_t>() < std::numeric_limits<std::int32_t>::min())
        Fail(key, "no whole number");
    return static_cast<std::int32_t>(value.get<std::int64_t>());
}

double JsonFields::Seconds(const std::string& key) const {
    const Json& value = At(key);
    if (!value.is_number() || !std::isfinite(value.get<double>()) || value.get<double>() < 0)
        Fail(key, "no number of seconds");
    return value.get<double>();
}

std::string JsonFields::Text(const std::string& key) const {
    const std::string encoded = key + base64Suffix;
    return m_json.contains(encoded) ? BytesOf(At(encoded), encoded) : TextOf(At(key), key);
}

std::vector<std::string> JsonFields::Texts(const std::string& key) const {
    const Json& list = At(key);
    if (!list.is_array())
        Fail(key, "no list");
    std::vector<std::string> texts;
    for (const Json& value : list) {
        const bool isEncoded = value.is_object() && value.contains(base64Key);
        texts.push_back(isEncoded ? BytesOf(value.at(base64Key), key) : TextOf(value, key));
    }
    return texts;
}

JsonFields JsonFields::Object(const std::string& key) const {
    if (!At(key).is_object())
        Fail(key, "no object");
    return JsonFields(At(key));
}

std::vector<JsonFields> JsonFields::Objects(const std::string& key) const {
    const Json& list = At(key);
    if (!list.is_array())
        Fail(key, "no list");
    std::vector<JsonFields> objects;
    for (const Json& value : list) {
        if (!value.is_object())
            Fail(key, "no list of objects");
        objects.push_back(JsonFields(value));
    }
    return objects;
}

const Json& JsonFields::At(const std::string& key) const {
    const auto found = m_json.find(key);
    if (found == m_json.end())
        throw WrongJson("the key \"" + key + "\" is missing");
    return *found;
}

} // namespace Bench
