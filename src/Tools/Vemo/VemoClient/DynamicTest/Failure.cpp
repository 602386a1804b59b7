#include "Tools/Vemo/VemoClient/DynamicTest/Failure.h"

#include "Modules/xFramework/Utilities/Format.h"
#include "Modules/xFramework/Utilities/Placeholders.h"

#include <iostream>

namespace {

/// Filling in a text with a placeholder in it would never end.
std::string WithoutPlaceholders(std::string text) {
    if (!Utilities::HasPlaceholder(text))
        return text;
    for (std::size_t hit = text.find("${"); hit != std::string::npos; hit = text.find("${", hit))
        text.insert(hit + 1, 1, ' ');
    return text;
}

} // namespace

void PrintError(const std::string& messageTemplate, const std::string& text) {
    std::cerr << Utilities::Format(messageTemplate, WithoutPlaceholders(text)).Text();
}
