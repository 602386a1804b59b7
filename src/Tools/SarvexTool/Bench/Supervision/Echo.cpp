#include "Tools/SarvexTool/Bench/Supervision/Echo.h"

#include "Tools/SarvexTool/Bench/Core/Decimal.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace Bench {

namespace {

std::vector<std::string_view> WordsOf(std::string_view text) {
    std::vector<std::string_view> words;
    while (true) {
        text.remove_prefix(std::min(text.find_first_not_of(" \t\r"), text.size()));
        if (text.empty())
            return words;
        const std::size_t end = std::min(text.find_first_of(" \t\r"), text.size());
        words.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
}

/// Whether a text begins with a power as the client looks for it: digits, dots, digits, the unit.
bool BeginsWithPower(std::string_view text) {
    constexpr std::string_view digits = "0123456789";
    const auto skip = [&text](std::string_view characters) {
        const std::size_t end = std::min(text.find_first_not_of(characters), text.size());
        text.remove_prefix(end);
        return end;
    };
    text.remove_prefix(text.starts_with('-') ? 1 : 0);
    if (skip(digits) == 0)
        return false;
    skip(".");
    skip(digits);
    return text.starts_with(" dBm");
}

/// What a line of an answer says of the settings: the part between its label and the last power of
/// the chain; nothing for a line that reports none.
std::optional<std::string_view> SettingsPart(std::string_view line, Chain chain) {
    constexpr std::string_view label = "Target Power: ";
    const std::string_view chainLabel = chain == Chain::A ? "Chain A (1) " : "Chain B (2) ";
    const std::size_t start = line.find(label);
    if (start == std::string_view::npos)
        return std::nullopt;
    std::string_view part = line.substr(start + label.size());
    while (true) {
        const std::size_t end = part.rfind(chainLabel);
        if (end == std::string_view::npos)
            return std::nullopt;
        if (BeginsWithPower(line.substr(start + label.size() + end + chainLabel.size())))
            return part.substr(0, end);
        part = part.substr(0, end);
    }
}

/// The same of the first line that reports the chain's power; empty where none does.
std::string_view FirstSettingsPart(std::string_view lines, Chain chain) {
    while (!lines.empty()) {
        const std::size_t end = std::min(lines.find('\n'), lines.size());
        if (const std::optional<std::string_view> part = SettingsPart(lines.substr(0, end), chain))
            return *part;
        lines.remove_prefix(std::min(end + 1, lines.size()));
    }
    return {};
}

bool BeginsWith(const std::vector<std::string_view>& words, std::size_t place,
                const std::vector<std::string_view>& name) {
    return words.size() - place >= name.size() &&
           std::equal(name.begin(), name.end(), words.begin() + static_cast<std::ptrdiff_t>(place));
}

/// A setting as the daemon repeats it.
struct Repeated {
    Setting setting{};
    std::string_view value;
};

/// The settings among the words: a column's name, the longest one that fits, and the word after it.
std::vector<Repeated> RepeatedSettings(const std::vector<std::string_view>& words) {
    std::vector<Repeated> repeated;
    for (std::size_t place = 0; place < words.size();) {
        std::size_t length = 0;
        Setting setting{};
        for (std::size_t index = 0; index < SettingCount; ++index) {
            const auto name = WordsOf(NameOf(static_cast<Setting>(index)));
            if (name.size() > length && BeginsWith(words, place, name)) {
                length = name.size();
                setting = static_cast<Setting>(index);
            }
        }
        place += std::max<std::size_t>(length, 1);
        if (length > 0 && place < words.size())
            repeated.push_back({setting, words[place++]});
    }
    return repeated;
}

bool AreEqualLetters(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](unsigned char one, unsigned char other) {
                          return std::tolower(one) == std::tolower(other);
                      });
}

bool AreSameValue(std::string_view written, std::string_view repeated) {
    constexpr std::string_view unit = "MHz";
    if (repeated.size() > unit.size() && repeated.ends_with(unit))
        repeated.remove_suffix(unit.size());
    const std::optional<Decimal> number = Decimal::Parse(written);
    return AreEqualLetters(written, repeated) || (number && number == Decimal::Parse(repeated));
}

/// The client sends the value of a typed literal and of a variable, and a daemon that repeats a
/// text of several words cannot be cut into words again.
bool IsSentAsWritten(std::string_view text) {
    return !text.starts_with('{') && text.find("$(") == std::string_view::npos &&
           WordsOf(text).size() == 1;
}

} // namespace

std::string ContradictionIn(std::string_view answerLines, Chain chain,
                            const OwnSettings& expected) {
    std::string contradiction;
    for (const auto& [setting, value] :
         RepeatedSettings(WordsOf(FirstSettingsPart(answerLines, chain)))) {
        const std::optional<std::string>& written = expected.at(static_cast<std::size_t>(setting));
        if (!written || !IsSentAsWritten(*written) || AreSameValue(*written, value))
            continue;
        contradiction.append(contradiction.empty() ? "" : ", ")
            .append(NameOf(setting))
            .append(" ")
            .append(value)
            .append(" in place of ")
            .append(*written);
    }
    return contradiction;
}

} // namespace Bench
