#include "Modules/xFramework/Core/Classes/ExpandVariables.h"

#include "Modules/xFramework/Core/Classes/MetaType.h"
#include "Modules/xFramework/Core/Classes/Namespace.h"

namespace Core {

namespace {

constexpr const char* opening = "$(";
constexpr std::size_t openingSize = 2;

std::string TextOf(const Value& variable) {
    const CoreTypes::IMetaType* const metaType = CoreTypes::FindMetaType(variable.Get());
    return metaType == nullptr ? "" : metaType->ToText(variable);
}

/// Replaces the reference that begins at hit, if its name is that of a variable.
void ExpandReference(std::string& text, std::size_t hit) {
    const std::size_t closing = text.find(')', hit);
    const std::size_t end = closing == std::string::npos ? text.size() : closing;
    const std::string name = text.substr(hit + openingSize, end - hit - openingSize);
    const auto* const variable = dynamic_cast<const Value*>(GlobalVariables().Find(name));
    if (variable != nullptr)
        text.replace(hit, end + 1 - hit, TextOf(*variable));
}

} // namespace

void ExpandVariables(std::string& text) {
    std::size_t hit = text.rfind(opening);
    while (hit != std::string::npos) {
        ExpandReference(text, hit);
        hit = hit == 0 ? std::string::npos : text.rfind(opening, hit - 1);
    }
}

} // namespace Core
