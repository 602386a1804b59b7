#pragma once

#include <cstdint>
#include <memory>

namespace EndToEnd {

/// A four-digit port of 127.0.0.1 that no other test takes while the object lives, whether somebody
/// listens on it or not: a client that looks in vain for its daemon there must not meet that of a
/// test beside it. Four digits, for the client's port file holds no more.
class ReservedPort {
public:
    /// Throws std::runtime_error when no port is free.
    ReservedPort();
    ~ReservedPort();
    ReservedPort(ReservedPort&& other) noexcept;
    ReservedPort& operator=(ReservedPort&& other) noexcept;

    std::uint16_t Number() const { return m_number; }

private:
    struct Mark;
    std::unique_ptr<Mark> m_mark;
    std::uint16_t m_number = 0;
};

} // namespace EndToEnd
