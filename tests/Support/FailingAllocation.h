#pragma once

#include <cstddef>

namespace TestSupport {

/// For as long as it lives, the request for memory that comes after so many others fails, once.
/// Links the program's memory with it, see FailingAllocation.cpp. One at a time, for one thread.
class FailingAllocation {
public:
    explicit FailingAllocation(std::size_t requestsBefore);
    ~FailingAllocation();

    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// Whether the request has come.
    bool HasFailed() const;
};

} // namespace TestSupport
