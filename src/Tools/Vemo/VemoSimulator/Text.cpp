#include "Tools/Vemo/VemoSimulator/Text.h"

#include <algorithm>
#include <string_view>

namespace VemoSimulator {

namespace {

constexpr std::string_view commandStart = "CLI -1 ";
constexpr std::string_view toolWord = "-vemo";

/// Where the quoted word ends whose opening quote was just passed.
std::size_t FindClosingQuote(std::string_view text) {
    std::size_t quote = text.find('"');
    while (quote != std::string_view::npos && quote + 1 < text.size() && text[quote + 1] != ' ')
        quote = text.find('"', quote + 1);
    return std::min(quote, text.size());
}

/// Cuts the first word off a text that begins with one.
std::string TakeWord(std::string_view& text) {
    const bool isQuoted = text.front() == '"';
    if (isQuoted)
        text.remove_prefix(1);
    const std::size_t end =
        isQuoted ? FindClosingQuote(text) : std::min(text.find(' '), text.size());
    std::string word(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    return word;
}

std::vector<std::string> SplitWords(std::string_view text) {
    std::vector<std::string> words;
    while (true) {
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
        if (text.empty())
            return words;
        words.push_back(TakeWord(text));
    }
}

} // namespace

std::optional<std::vector<std::string>> SplitCommand(const std::string& body) {
    if (!body.starts_with(commandStart))
        return std::nullopt;
    std::vector<std::string> words = SplitWords(std::string_view(body).substr(commandStart.size()));
    if (!words.empty() && words.front() == toolWord)
        words.erase(words.begin());
    return words;
}

} // namespace VemoSimulator
