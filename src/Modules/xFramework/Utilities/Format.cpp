#include "Modules/xFramework/Utilities/Format.h"

#include "Modules/xFramework/Utilities/FormatProviders.h"

namespace Utilities {

namespace {

std::string Placeholder(std::int32_t number) {
    return "${" + std::to_string(number) + "}";
}

} // namespace

Format::Format(const std::string& templateText) : m_text(templateText) {
    FormatProviders::Instance().ProcessString(m_text);
}

Format& Format::operator%(const std::string& argument) {
    std::string processed = argument;
    FormatProviders::Instance().ProcessString(processed);
    ReplaceNextPlaceholder(processed);
    return *this;
}

Format& Format::operator%(const char* argument) {
    // A text stream renders a missing text as nothing.
    ReplaceNextPlaceholder(argument != nullptr ? argument : "");
    return *this;
}

void Format::ReplaceNextPlaceholder(const std::string& argument) {
    const std::string placeholder = Placeholder(++m_argumentIndex);
    std::size_t position = m_text.find(placeholder);
    while (position != std::string::npos) {
        m_text.replace(position, placeholder.size(), argument);
        // From the front, not from the end of the replacement: an argument and the text around it
        // may form a placeholder together.
        position = m_text.find(placeholder);
    }
}

std::string FillTemplate(std::string templateText, const std::vector<std::string>& arguments) {
    const FormatProviders& providers = FormatProviders::Instance();
    providers.ProcessString(templateText);
    std::size_t searchStart = 0;
    std::int32_t number = 0;
    for (std::string argument : arguments) {
        providers.ProcessString(argument);
        const std::string placeholder = Placeholder(++number);
        const std::size_t position = templateText.find(placeholder, searchStart);
        if (position == std::string::npos)
            continue;
        templateText.replace(position, placeholder.size(), argument);
        searchStart = position + argument.size();
    }
    return templateText;
}

} // namespace Utilities
