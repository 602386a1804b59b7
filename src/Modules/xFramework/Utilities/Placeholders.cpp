#include "Modules/xFramework/Utilities/Placeholders.h"

#include "Modules/xFramework/Utilities/Raise.h"

namespace Utilities {

bool HasPlaceholder(const std::string& text) {
    constexpr std::size_t placeholderSize = 4;
    for (std::size_t hit = text.find("${"); hit != std::string::npos;
         hit = text.find("${", hit + 1)) {
        const bool isComplete = text.size() - hit >= placeholderSize && text[hit + 3] == '}';
        if (isComplete && text[hit + 2] >= '1' && text[hit + 2] <= '5')
            return true;
    }
    return false;
}

void RejectPlaceholders(const std::string& text, const std::string& what) {
    if (HasPlaceholder(text))
        Raise(
            what + " contains a message placeholder (a dollar sign and a digit from 1 to 5 in "
                   "braces), which cannot be sent",
            {"src/Modules/xFramework/Utilities/Placeholders", 21, "Utilities::RejectPlaceholders"});
}

} // namespace Utilities
