#pragma once

// Public, stable within a major version. One thread at a time. Throws std::bad_alloc only.

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace XML {

class Node;

/// The child entries of a node: element names with their nodes, sorted by name byte by byte, equal
/// names in the order added.
///
/// A copy is a snapshot: it shares the nodes and keeps them alive, and a child that is added to one
/// of the two later does not show in the other. Copying costs the same however many children there
/// are; the entries are copied by the first Add to a shared list. Not for use by several threads at
/// once.
class Children {
public:
    struct Entry {
        const std::string& name;
        const std::shared_ptr<Node>& node;
    };
    class Iterator;

    Children() = default;
    Children(const Children&) = default;
    Children& operator=(const Children& other);

    /// Deletes the nodes that nobody else shares, with all that is below them. Does not recurse, so
    /// that no depth of the tree overflows the stack.
    ~Children();

    bool IsEmpty() const { return m_pFamily == nullptr; }
    Iterator begin() const;
    Iterator end() const;

    /// The first child of that name; null when there is none.
    Node* FindFirst(std::string_view name) const;

    /// Creates an empty node after the children of the same name. The node belongs to this list and
    /// to later copies of it. Iterators of this list become invalid, those of its copies do not.
    /// When there is no memory for it, std::bad_alloc is thrown and the list stays as it was.
    Node* Add(const char* name);

private:
    using Nodes = std::vector<std::shared_ptr<Node>>;
    /// Names are kept once for all their nodes, which are few names for many nodes as a rule. No
    /// list of nodes is empty.
    using Groups = std::map<std::string, Nodes, std::less<>>;
    struct Family;

    const Groups& SharedGroups() const;
    std::shared_ptr<Family> OwnFamily() const;
    static void Release(std::shared_ptr<Family> doomed);

    /// Null as long as there are no children.
    std::shared_ptr<Family> m_pFamily;
};

class Children::Iterator {
public:
    explicit Iterator(Groups::const_iterator group) : m_group(group) {}

    Entry operator*() const { return {m_group->first, m_group->second[m_index]}; }
    Iterator& operator++() {
        if (++m_index == m_group->second.size()) {
            ++m_group;
            m_index = 0;
        }
        return *this;
    }
    bool operator==(const Iterator&) const = default;

private:
    Groups::const_iterator m_group;
    std::size_t m_index = 0;
};

} // namespace XML
