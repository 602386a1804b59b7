#pragma once

#include "tests/EndToEnd/Support/Process.h"

#include <cstddef>
#include <random>

namespace EndToEnd {

/// Random moments in the runs of a program at which a test disturbs it.
class RandomMoments {
public:
    /// The seed is printed, as the option that gives it again; 0 stands for a new one.
    explicit RandomMoments(int seed);

    /// A number below the limit.
    std::size_t Below(std::size_t limit) { return m_random() % limit; }

    /// From now on no wait is longer, in seconds, as far as the machine stays as fast as it is.
    void SetLongestWait(double seconds) { m_longest = seconds; }

    /// Waits for a random time; false when the program has ended by then. A machine becomes faster
    /// and slower with its other work: the waits become shorter when a program ends before its
    /// moment, and longer little by little while none does.
    bool WaitIn(const Process& program);

private:
    std::mt19937 m_random;
    double m_longest = 0;
};

} // namespace EndToEnd
