#pragma once

#include <cstddef>
#include <cstring>
#include <vector>

namespace TestSupport {

/// Where a virtual operation is in the table of its class, counted from 0; a virtual destructor
/// takes two places. By the Itanium C++ ABI, which both compilers follow, a pointer to a virtual
/// member holds one more than the operation's offset in the table.
template <typename Member>
std::size_t VirtualSlot(Member member) {
    std::ptrdiff_t words[2];
    static_assert(sizeof member == sizeof words);
    std::memcpy(words, &member, sizeof words);
    return static_cast<std::size_t>(words[0] - 1) / sizeof(void*);
}

/// The places of several operations.
template <typename... Members>
std::vector<std::size_t> VirtualSlots(Members... members) {
    return {VirtualSlot(members)...};
}

} // namespace TestSupport
