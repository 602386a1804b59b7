#include "Tools/Vemo/VemoSimulator/Recording.h"

#include <nlohmann/json.hpp>

#include <fstream>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace VemoSimulator {

namespace {

using nlohmann::json;

constexpr std::string_view base64Digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

[[noreturn]] void Refuse(const std::string& problem) {
    throw std::invalid_argument(problem);
}

/// Nothing when the text is no base64 with its padding.
std::optional<std::string> DecodeBase64(std::string_view text) {
    constexpr std::size_t groupSize = 4;
    constexpr unsigned digitBits = 6;
    constexpr unsigned byteBits = 8;
    if (text.size() % groupSize != 0)
        return std::nullopt;
    const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    text.remove_suffix(padding);
    std::string bytes;
    unsigned bits = 0;
    unsigned bitCount = 0;
    for (const char character : text) {
        const std::size_t digit = base64Digits.find(character);
        if (digit == std::string_view::npos)
            return std::nullopt;
        bits = bits << digitBits | static_cast<unsigned>(digit);
        bitCount += digitBits;
        if (bitCount >= byteBits) {
            bitCount -= byteBits;
            bytes.push_back(static_cast<char>(bits >> bitCount));
            bits &= (1U << bitCount) - 1;
        }
    }
    return bytes;
}

/// The bytes under a key, or those under the key with "Base64" after it.
std::string TakeBytes(const json& exchange, const std::string& key) {
    const auto plain = exchange.find(key);
    const auto encoded = exchange.find(key + "Base64");
    const bool isPlain = plain != exchange.end();
    if (isPlain == (encoded != exchange.end()))
        Refuse("has not one of the keys \"" + key + "\" and \"" + key + "Base64\"");
    const json& value = isPlain ? *plain : *encoded;
    if (!value.is_string())
        Refuse("has a \"" + key + "\" that is no text");
    if (isPlain)
        return value.get<std::string>();
    auto bytes = DecodeBase64(value.get_ref<const std::string&>());
    if (!bytes)
        Refuse("has a \"" + key + "Base64\" that is no base64");
    return std::move(*bytes);
}

bool WasAnswered(const json& exchange) {
    const auto end = exchange.find("end");
    if (end == exchange.end() || !end->is_string())
        Refuse("has no text under the key \"end\"");
    return *end == "answered";
}

} // namespace

Recording::Recording(std::istream& lines, const std::string& name) : m_name(name) {
    std::size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        // getline meets the end of the stream only where the line has no end.
        if (lines.eof() && !json::accept(line))
            break;
        try {
            Add(line);
        } catch (const std::invalid_argument& error) {
            Refuse(name + ", line " + std::to_string(number) + ": " + error.what());
        }
    }
    if (lines.bad())
        Refuse("cannot read " + name);
    if (m_answers.empty())
        Refuse(name + " holds no exchange that was answered");
}

void Recording::Add(const std::string& line) {
    const json exchange = json::parse(line, nullptr, false);
    if (!exchange.is_object())
        Refuse("is no JSON object");
    if (WasAnswered(exchange))
        m_answers[TakeBytes(exchange, "command")].push_back(TakeBytes(exchange, "answer"));
}

const std::vector<std::string>* Recording::AnswersTo(const std::string& command) const {
    const auto found = m_answers.find(command);
    return found == m_answers.end() ? nullptr : &found->second;
}

std::shared_ptr<const Recording> ReadRecording(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        Refuse("cannot read " + file);
    return std::make_shared<Recording>(stream, file);
}

} // namespace VemoSimulator
