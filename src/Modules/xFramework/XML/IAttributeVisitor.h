#pragma once

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

} // namespace XML
