#pragma once

// Public, stable within a major version. A document belongs to one thread at a time and owns its
// tree. Throws std::bad_alloc, and what a listener throws.

#include "Modules/xFramework/XML/IListener.h"
#include "Modules/xFramework/XML/Node.h"

#include <memory>

namespace XML {

/// A document. Its top node, whose children are the top-level elements, belongs to it and with it
/// the whole tree. The top node's attributes and text are never written.
class Base {
public:
    /// The top node, created by the first call.
    Node* GetTopNode();

    /// Replays the document into the listener: every element with its attributes in the order of
    /// their names, its text unless that is empty, and its children in their order. The children of
    /// a node are taken when their replay begins; what the listener adds later does not show. What
    /// the listener throws ends the replay. Needs no stack for the depth of the tree.
    void Save(IListener& listener) const;

private:
    std::unique_ptr<Node> m_pTopNode;
};

} // namespace XML
