#include "Modules/xFramework/Utilities/FormatProviders.h"

namespace Utilities {

FormatProviders& FormatProviders::Instance() {
    static auto* const instance = new FormatProviders;
    return *instance;
}

void FormatProviders::ProcessString(std::string& text) const {
    for (const StringProvider provider : m_stringProviders) {
        if (text.empty())
            return;
        provider(text);
    }
}

std::string& FormatProviders::ProcessObject(std::string& target,
                                            const Core::IInterface& value) const {
    for (const ObjectProvider provider : m_objectProviders)
        provider(target, value);
    return target;
}

void FormatProviders::AddStringProvider(StringProvider provider) {
    RemoveStringProvider(provider);
    m_stringProviders.push_back(provider);
}

void FormatProviders::RemoveStringProvider(StringProvider provider) {
    m_stringProviders.remove(provider);
}

void FormatProviders::AddObjectProvider(ObjectProvider provider) {
    RemoveObjectProvider(provider);
    m_objectProviders.push_back(provider);
}

void FormatProviders::RemoveObjectProvider(ObjectProvider provider) {
    m_objectProviders.remove(provider);
}

} // namespace Utilities
