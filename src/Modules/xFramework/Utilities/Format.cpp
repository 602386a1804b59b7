#include "Modules/xFramework/Utilities/Format.h"

#include "Modules/xFramework/Utilities/FormatProviders.h"

namespace Utilities {

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
    const std::string placeholder = "${" + std::to_string(++m_argumentIndex) + "}";
    std::size_t position = m_text.find(placeholder);
    while (position != std::string::npos) {
        m_text.replace(position, placeholder.size(), argument);
        // From the front, not from behind the replacement: an argument and the text around it may
        // form a placeholder together.
        position = m_text.find(placeholder);
    }
}

} // namespace Utilities
