#include "Modules/xFramework/XML/Base.h"

#include <vector>

namespace XML {

namespace {

/// Hands the attributes of a node to a listener.
class AttributeReplay : public IAttributeVisitor {
public:
    explicit AttributeReplay(IListener& listener) : m_listener(listener) {}

    void Visit(const char* name, const char* value) override { m_listener.Attribute(name, value); }

private:
    IListener& m_listener;
};

/// A list of children on its way to the listener.
struct Visit {
    explicit Visit(const Children& list)
        : children(list), next(children.begin()), end(children.end()) {}

    Children children;
    Children::Iterator next;
    Children::Iterator end;
};

void ReplayStart(const std::string& name, const Node& node, IListener& listener) {
    listener.StartElement(name.c_str());
    AttributeReplay attributes(listener);
    node.EnumerateAttributes(attributes);
    if (!node.GetText().empty())
        listener.Text(node.GetText().c_str());
}

/// visits holds the open elements, the innermost last; the first one is for the top node, which
/// has no events of its own.
void ReplayChildren(const Node& top, IListener& listener) {
    std::vector<Visit> visits;
    visits.emplace_back(top.GetChildren());
    while (!visits.empty()) {
        Visit& innermost = visits.back();
        if (innermost.next == innermost.end) {
            visits.pop_back();
            if (!visits.empty())
                listener.EndElement();
            continue;
        }
        const auto [name, node] = *innermost.next;
        ++innermost.next;
        ReplayStart(name, *node, listener);
        if (node->GetChildren().IsEmpty())
            listener.EndElement();
        else
            visits.emplace_back(node->GetChildren());
    }
}

} // namespace

Node* Base::GetTopNode() {
    if (m_pTopNode == nullptr)
        m_pTopNode = std::make_unique<Node>();
    return m_pTopNode.get();
}

void Base::Save(IListener& listener) const {
    listener.StartDocument();
    if (m_pTopNode != nullptr)
        ReplayChildren(*m_pTopNode, listener);
    listener.EndDocument();
}

} // namespace XML
