#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

/// Its keys stay in the order in which they were set.
using Json = nlohmann::ordered_json;

/// JSON in one line of ASCII, with a line feed after it.
std::string LineOf(const Json& json);

/// Sets a key to a text of any bytes. What is no UTF-8 goes in base64 under a key of its own, with
/// "Base64" after the name.
void PutText(Json& object, const std::string& key, const std::string& bytes);

/// Sets a key to a list of texts of any bytes. What is no UTF-8 is an object with the key "base64".
void PutTexts(Json& object, const std::string& key, const std::vector<std::string>& texts);

/// Bytes as text of letters, digits, "+" and "/", filled up with "=" to groups of four.
std::string ToBase64(std::string_view bytes);

/// The bytes again; nothing for a text that ToBase64 does not write.
std::optional<std::string> FromBase64(std::string_view text);

/// Why a text is not what it should be, in words.
class WrongJson : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

/// An object of JSON whose keys somebody else may have written. All of these throw WrongJson for a
/// key that is missing or of another type; keys that nobody asks for do no harm.
class JsonFields {
public:
    /// Throws WrongJson for what is no object of JSON.
    static JsonFields Parse(std::string_view text);

    /// Whether there is such a key, with or without "Base64" after it, and it is not null.
    bool Has(const std::string& key) const;

    bool Flag(const std::string& key) const;
    std::uint64_t Count(const std::string& key) const;
    /// A count that fits a line number.
    std::uint32_t Line(const std::string& key) const;
    std::int32_t Integer(const std::string& key) const;
    /// Not negative.
    double Seconds(const std::string& key) const;
    std::string Text(const std::string& key) const;
    std::vector<std::string> Texts(const std::string& key) const;
    JsonFields Object(const std::string& key) const;
    std::vector<JsonFields> Objects(const std::string& key) const;

private:
    explicit JsonFields(Json json) : m_json(std::move(json)) {}

    const Json& At(const std::string& key) const;

    Json m_json;
};

} // namespace Bench
