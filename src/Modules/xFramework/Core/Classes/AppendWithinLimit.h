#pragma once

#include <stdexcept>
#include <utility>

namespace Core {

/// Appends to a list; throws std::length_error "list too long", as some run-time libraries do of
/// themselves, when the list has its maximum length.
template <typename List>
void AppendWithinLimit(List& list, typename List::value_type&& item) {
    if (list.size() >= list.max_size())
        throw std::length_error("list too long");
    list.push_back(std::move(item));
}

} // namespace Core
