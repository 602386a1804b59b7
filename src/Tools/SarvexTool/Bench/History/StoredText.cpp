#include "Tools/SarvexTool/Bench/History/StoredText.h"

#include "Tools/SarvexTool/Bench/Core/Utf8.h"
#include "Tools/SarvexTool/Bench/Files/JsonFields.h"

namespace Bench {

namespace {

constexpr std::string_view mark = "base64:";

bool IsPlain(std::string_view text) {
    if (text.starts_with(mark))
        return false;
    while (!text.empty()) {
        const Utf8Character character = FirstCharacter(text);
        if (!character.isValid || character.code == 0)
            return false;
        text.remove_prefix(character.size);
    }
    return true;
}

} // namespace

std::string StoredText(std::string_view text) {
    return IsPlain(text) ? std::string(text) : std::string(mark) + ToBase64(text);
}

std::string TextOfStored(std::string_view stored) {
    if (!stored.starts_with(mark))
        return std::string(stored);
    return FromBase64(stored.substr(mark.size())).value_or(std::string(stored));
}

} // namespace Bench
