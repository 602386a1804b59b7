#include "Modules/xFramework/Core/Classes/ExpandVariables.h"

#include "Modules/xFramework/Core/Classes/MetaType.h"
#include "Modules/xFramework/Core/Classes/Namespace.h"

#include <algorithm>
#include <string_view>

namespace Core {

namespace {

constexpr std::string_view opening = "$(";

std::string TextOf(const Value& variable) {
    const CoreTypes::IMetaType* const metaType = CoreTypes::FindMetaType(variable.Get());
    return metaType == nullptr ? "" : metaType->ToText(variable);
}

const Value* FindVariable(std::string_view name) {
    return dynamic_cast<const Value*>(GlobalVariables().FindEntry(name));
}

/// The references of a text, from its end to its front. The first closing parenthesis after the
/// current place is carried along, so that a text whose references all stay is searched for one
/// once. A replacement moves what follows it and searches again, to the next one after it.
class ReferenceExpander {
public:
    explicit ReferenceExpander(std::string& text) : m_text(text), m_searchedFrom(text.size()) {}

    /// Replaces the reference that begins at hit, if its name is that of a variable. Each call's
    /// hit is before that of the call before.
    void Expand(std::size_t hit) {
        FindClosing(hit);
        const std::size_t nameStart = hit + opening.size();
        const std::size_t nameEnd = std::min(m_closing, m_text.size());
        const auto name = std::string_view(m_text).substr(nameStart, nameEnd - nameStart);
        const Value* const variable = FindVariable(name);
        if (variable == nullptr)
            return;
        m_text.replace(hit, nameEnd + 1 - hit, TextOf(*variable));
        m_closing = m_text.find(')', hit);
    }

private:
    void FindClosing(std::size_t hit) {
        const auto unsearched = std::string_view(m_text).substr(hit, m_searchedFrom - hit);
        const std::size_t found = unsearched.find(')');
        if (found != std::string_view::npos)
            m_closing = hit + found;
        m_searchedFrom = hit;
    }

    std::string& m_text;
    std::size_t m_searchedFrom;
    std::size_t m_closing = std::string::npos;
};

} // namespace

void ExpandVariables(std::string& text) {
    ReferenceExpander references(text);
    std::size_t hit = text.rfind(opening);
    while (hit != std::string::npos) {
        references.Expand(hit);
        hit = hit == 0 ? std::string::npos : text.rfind(opening, hit - 1);
    }
}

} // namespace Core
