#include "Modules/xFramework/XML/Node.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace XML {

namespace {

constexpr std::string_view referenceStart = "$(";
constexpr const char* referenceNameCharacters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-";

/// The length of the reference at the position, 0 when there is none.
std::size_t ReferenceLength(const std::string& text, std::size_t position) {
    const std::size_t nameStart = position + referenceStart.size();
    const std::size_t nameEnd = text.find_first_not_of(referenceNameCharacters, nameStart);
    const bool isReference =
        nameEnd != std::string::npos && nameEnd > nameStart && text[nameEnd] == ')';
    return isReference ? nameEnd + 1 - position : 0;
}

} // namespace

bool Node::HasAttribute(const char* name) const {
    return FindAttribute(name) != nullptr;
}

const char* Node::FindAttribute(const char* name) const {
    const std::string_view key = name;
    const auto attribute = FindPlace(key);
    if (attribute != m_attributes.end() && attribute->name == key)
        // cppcheck-suppress stlcstr ; the node's own
        return attribute->value.c_str();
    const Node* child = m_children.FindFirst(key);
    return child == nullptr || child->m_text.empty() ? nullptr : child->m_text.c_str();
}

const char* Node::GetAttribute(const char* name) const {
    const char* value = FindAttribute(name);
    return value == nullptr ? "" : value;
}

void Node::SetAttribute(const char* name, const char* value) {
    // Room for two at once: most elements of a large result have two attributes or more, and a list
    // that grows one by one would ask for memory for each of the two.
    if (m_attributes.capacity() == 0)
        m_attributes.reserve(2);
    const std::string_view key = name;
    const auto place = m_attributes.begin() + (FindPlace(key) - m_attributes.begin());
    const bool exists = place != m_attributes.end() && place->name == key;
    if (*value == '\0') {
        if (exists)
            m_attributes.erase(place);
    } else if (exists) {
        place->value = value;
    } else {
        // The copies are made first: both texts may belong to an attribute that moves now.
        m_attributes.insert(place, NamedValue{name, value});
    }
}

void Node::EnumerateAttributes(IAttributeVisitor& visitor) const {
    for (const NamedValue& attribute : m_attributes)
        visitor.Visit(attribute.name.c_str(), attribute.value.c_str());
}

/// Where the attribute of that name is or would be.
std::vector<Node::NamedValue>::const_iterator Node::FindPlace(std::string_view name) const {
    return std::lower_bound(
        m_attributes.begin(), m_attributes.end(), name,
        [](const NamedValue& attribute, std::string_view key) { return attribute.name < key; });
}

const char* Node::ExpandValue(std::string& out, const std::string& text, bool removeUnknown) const {
    out.clear();
    std::size_t position = 0;
    for (std::size_t hit = text.find(referenceStart); hit != std::string::npos;
         hit = text.find(referenceStart, hit)) {
        const std::size_t length = ReferenceLength(text, hit);
        if (length != 0) {
            out.append(text, position, hit - position);
            AppendReference(out, text.substr(hit, length), removeUnknown);
            position = hit + length;
        }
        hit += length == 0 ? 1 : length;
    }
    return out.append(text, position).c_str();
}

void Node::AppendReference(std::string& out, const std::string& reference,
                           bool removeUnknown) const {
    const std::string name = reference.substr(2, reference.size() - 3);
    const char* value = m_pResolver == nullptr ? nullptr : m_pResolver->Resolve(name.c_str());
    if (value != nullptr)
        out += value;
    else if (!removeUnknown)
        out += reference;
}

const char* Node::GetExpandedValue(std::string& out, const char* text, bool removeUnknown) const {
    const std::string copy = text;
    return ExpandValue(out, copy, removeUnknown);
}

const char* Node::GetNumericValue(std::string& out, const char* text) const {
    constexpr bool removeUnknown = false;
    constexpr int base = 10;
    const long long value = std::strtoll(GetExpandedValue(out, text, removeUnknown), nullptr, base);
    out = std::to_string(value);
    return out.c_str();
}

void Node::SetResolver(IResolver* pResolver) {
    if (pResolver == nullptr)
        return;
    if (m_pResolver != nullptr)
        m_pResolver->SetResolver(pResolver);
    else
        m_pResolver = pResolver;
}

} // namespace XML
