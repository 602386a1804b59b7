#include "Modules/xFramework/XML/Children.h"

#include "Modules/xFramework/XML/Node.h"

#include <utility>

namespace XML {

/// The entries of one node and of the copies of its list.
struct Children::Family {
    Groups groups;
    /// The next family to delete, see Release.
    std::shared_ptr<Family> next;
};

Children& Children::operator=(const Children& other) {
    Children copy(other);
    std::swap(m_pFamily, copy.m_pFamily);
    return *this;
}

Children::~Children() {
    if (m_pFamily != nullptr)
        Release(std::move(m_pFamily));
}

Children::Iterator Children::begin() const {
    return Iterator(SharedGroups().begin());
}

Children::Iterator Children::end() const {
    return Iterator(SharedGroups().end());
}

Node* Children::FindFirst(std::string_view name) const {
    const Groups& groups = SharedGroups();
    const auto group = groups.find(name);
    return group == groups.end() ? nullptr : group->second.front().get();
}

Node* Children::Add(const char* name) {
    auto node = std::make_shared<Node>();
    std::shared_ptr<Family> family = OwnFamily();
    Groups& groups = family->groups;
    const auto group = groups.find(std::string_view(name));
    if (group == groups.end())
        groups.emplace(name, Nodes(1, node));
    else
        group->second.push_back(node);
    m_pFamily = std::move(family);
    return node.get();
}

const Children::Groups& Children::SharedGroups() const {
    static const Groups none;
    return m_pFamily == nullptr ? none : m_pFamily->groups;
}

/// The family that an entry can be added to: this list's, or a copy of it when others share that.
std::shared_ptr<Children::Family> Children::OwnFamily() const {
    if (m_pFamily != nullptr && m_pFamily.use_count() == 1)
        return m_pFamily;
    auto own = std::make_shared<Family>();
    own->groups = SharedGroups();
    return own;
}

/// Takes the families below out of their nodes before the nodes go, and chains them up through
/// their own links: a destructor cannot rely on memory for a list.
void Children::Release(std::shared_ptr<Family> doomed) {
    while (doomed != nullptr) {
        const std::shared_ptr<Family> current = std::move(doomed);
        if (current.use_count() > 1)
            return;
        doomed = std::move(current->next);
        for (const auto& [name, nodes] : current->groups) {
            for (const auto& node : nodes) {
                std::shared_ptr<Family>& below = node->m_children.m_pFamily;
                if (node.use_count() > 1 || below == nullptr || below.use_count() > 1)
                    continue;
                below->next = std::move(doomed);
                doomed = std::move(below);
            }
        }
    }
}

} // namespace XML
