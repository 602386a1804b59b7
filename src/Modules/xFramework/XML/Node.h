#pragma once

// Public, stable within a major version. A tree belongs to one thread at a time. Nodes are their
// parents'. Throws std::bad_alloc only, and what a visitor or resolver throws.

#include "Modules/xFramework/XML/Children.h"

#include <string>
#include <string_view>
#include <vector>

namespace XML {

/// Is shown the attributes of a node, one call each.
class IAttributeVisitor {
public:
    virtual ~IAttributeVisitor() = default;

    /// Both texts are zero-terminated and belong to the node.
    virtual void Visit(const char* name, const char* value) = 0;

protected:
    IAttributeVisitor() = default;
    IAttributeVisitor(const IAttributeVisitor&) = default;
    IAttributeVisitor& operator=(const IAttributeVisitor&) = default;
};

/// Gives the values of the '$(name)' references in the texts of a node.
class IResolver {
public:
    virtual ~IResolver() = default;

    /// The value of that name, zero-terminated and valid until the next call; null when unknown.
    virtual const char* Resolve(const char* name) = 0;

    /// Takes a further resolver that was offered to a node which has this one already. What becomes
    /// of it is decided by this resolver.
    virtual void SetResolver(IResolver* pResolver) = 0;

protected:
    IResolver() = default;
    IResolver(const IResolver&) = default;
    IResolver& operator=(const IResolver&) = default;
};

/// An element of a document: attributes, a text and child elements. Its name is the key under which
/// its parent holds it. Names, values and texts are zero-terminated 8-bit texts; no operation takes
/// null for one. They are kept as given: characters that mean something in XML are not escaped, so
/// callers do not pass them.
class Node {
public:
    Node() = default;
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    // The virtual operations are in the order that other modules are built against, the
    // destructor last.

    /// Whether FindAttribute finds something.
    virtual bool HasAttribute(const char* name) const;

    /// The attribute's value; without such an attribute the text of the first child of that name,
    /// unless that is empty; otherwise null. Valid until the attribute or that text is changed.
    virtual const char* FindAttribute(const char* name) const;

    /// The same, but an empty text in place of null.
    virtual const char* GetAttribute(const char* name) const;

    /// Adds the attribute or replaces its value. An empty value removes it.
    virtual void SetAttribute(const char* name, const char* value);

    /// Shows the attributes to the visitor, in the order of their names. The visitor does not
    /// change this node.
    virtual void EnumerateAttributes(IAttributeVisitor& visitor) const;

    /// Puts text into out, with the '$(name)' references that the resolver knows replaced by their
    /// values. A reference that it does not know, or every one when there is no resolver, stays as
    /// it is, or is left out if removeUnknown is set. Values are not searched for references
    /// again. Returns out's text.
    virtual const char* ExpandValue(std::string& out, const std::string& text,
                                    bool removeUnknown) const;

    /// ExpandValue of a copy of the text, so that text may belong to out.
    virtual const char* GetExpandedValue(std::string& out, const char* text,
                                         bool removeUnknown) const;

    /// Puts the decimal integer at the start of the expanded text into out, "0" when there is none.
    /// A value beyond 64 bits becomes the nearest that has 64 bits. Returns out's text.
    virtual const char* GetNumericValue(std::string& out, const char* text) const;

    /// Sets the resolver, which this node does not own. Null is ignored; a node that has a resolver
    /// already hands the new one to it.
    virtual void SetResolver(IResolver* pResolver);

    /// Deletes the nodes below too, except those that a copy of a children list shares.
    virtual ~Node() = default;

    /// Adds an empty element after the children of the same name. The node is this one's.
    Node* AddChild(const char* name) { return m_children.Add(name); }

    /// The list itself, not a copy; iterating over it allows no AddChild on this node meanwhile.
    const Children& GetChildren() const { return m_children; }

    void SetText(const char* text) { m_text = text; }
    const std::string& GetText() const { return m_text; }

private:
    friend class Children;

    struct NamedValue {
        std::string name;
        std::string value;
    };

    std::vector<NamedValue>::const_iterator FindPlace(std::string_view name) const;
    void AppendReference(std::string& out, const std::string& reference, bool removeUnknown) const;

    IResolver* m_pResolver = nullptr;
    Children m_children;
    /// Sorted by name; no value is empty. A list, because elements have few attributes.
    std::vector<NamedValue> m_attributes;
    std::string m_text;
};

} // namespace XML
