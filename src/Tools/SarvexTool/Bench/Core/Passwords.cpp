#include "Tools/SarvexTool/Bench/Core/Passwords.h"

#include <algorithm>
#include <string_view>

namespace Bench {

namespace {

/// Where a word ends that begins before the place.
std::size_t EndOfWord(const std::string& text, std::size_t place, std::string_view ends) {
    return std::min(text.find_first_of(ends, place), text.size());
}

/// Of the URL whose part after "://" begins at the place. A password that should have been written
/// with %40 and %2F may have any of these marks.
void ErasePasswordOfUrl(std::string& text, std::size_t place) {
    const std::size_t end = EndOfWord(text, place, " \t\r\n\"");
    const std::size_t at = text.rfind('@', end);
    const std::size_t colon = text.find(':', place);
    if (at != std::string::npos && at > place && colon < at)
        text.erase(colon, at - colon);
}

void ErasePasswordOfSetting(std::string& text, std::size_t place) {
    text.erase(place, EndOfWord(text, place, " \t\r\n\"&") - place);
}

/// Does something after each place where the words are.
template <typename Change>
void AfterEach(std::string& text, std::string_view words, Change change) {
    for (std::size_t place = text.find(words); place != std::string::npos;
         place = text.find(words, place)) {
        place += words.size();
        change(text, place);
    }
}

} // namespace

std::string WithoutPasswords(std::string text) {
    AfterEach(text, "://", ErasePasswordOfUrl);
    AfterEach(text, "password=", ErasePasswordOfSetting);
    return text;
}

} // namespace Bench
