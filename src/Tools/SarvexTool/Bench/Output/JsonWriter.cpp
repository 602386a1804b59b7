#include "Tools/SarvexTool/Bench/Output/JsonWriter.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace Bench {

namespace {

/// Whether a text is its own form in JSON, between quotation marks.
bool IsPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char character) {
        return character >= ' ' && character <= '~' && character != '"' && character != '\\';
    });
}

} // namespace

JsonWriter& JsonWriter::Key(const char* key) {
    Separate();
    m_text.append("\"").append(key).append("\": ");
    m_needsComma = false;
    return *this;
}

void JsonWriter::Text(std::string_view text) {
    if (IsPlain(text)) {
        Separate();
        m_text.append("\"").append(text).append("\"");
        return;
    }
    // In ASCII no character of the text is an order to a terminal.
    Plain(nlohmann::json(text).dump(-1, ' ', true, nlohmann::json::error_handler_t::replace));
}

void JsonWriter::Number(double number) {
    Plain(nlohmann::json(number).dump());
}

void JsonWriter::Finish() {
    m_text += '\n';
    m_stream << m_text;
    m_text.clear();
}

void JsonWriter::Begin(char bracket) {
    Separate();
    m_text += bracket;
    m_needsComma = false;
}

void JsonWriter::End(char bracket) {
    if (m_breaksLine)
        m_text += '\n';
    m_breaksLine = false;
    m_text += bracket;
    m_needsComma = true;
}

void JsonWriter::Separate() {
    constexpr std::size_t largePiece = 65536;
    if (m_needsComma)
        m_text += m_breaksLine ? "," : ", ";
    if (m_breaksLine)
        m_text += '\n';
    m_breaksLine = false;
    m_needsComma = true;
    if (m_text.size() < largePiece)
        return;
    m_stream << m_text;
    m_text.clear();
}

void JsonWriter::Plain(std::string_view text) {
    Separate();
    m_text += text;
}

} // namespace Bench
