#include "Tools/SarvexTool/Bench/Files/JsonFields.h"

#include "Tools/SarvexTool/Bench/Core/Utf8.h"
#include "Tools/SarvexTool/Bench/Files/Base64.h"

#include <cmath>
#include <limits>
#include <utility>

namespace Bench {

namespace {

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
