#include "fuzz/Support/Input.h"

#include <algorithm>

std::string ToText(const std::uint8_t* data, std::size_t size) {
    return {data, data + size};
}

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts(1);
    for (const char character : text) {
        if (character == separator)
            parts.emplace_back();
        else
            parts.back().push_back(character);
    }
    return parts;
}

const std::string& Parts::operator[](std::size_t index) const {
    static const std::string missing;
    return index < m_parts.size() ? m_parts[index] : missing;
}

std::vector<std::string> Parts::From(std::size_t index) const {
    const auto skipped = static_cast<std::ptrdiff_t>(std::min(index, m_parts.size()));
    return {m_parts.begin() + skipped, m_parts.end()};
}

std::string UpToNul(const std::string& text) {
    return text.substr(0, text.find('\0'));
}

std::string EndLastLine(std::string text) {
    if (!text.empty() && !text.ends_with('\n'))
        text += '\n';
    return text;
}
