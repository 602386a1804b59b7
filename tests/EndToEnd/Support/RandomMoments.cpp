#include "tests/EndToEnd/Support/RandomMoments.h"

#include <chrono>
#include <iostream>
#include <thread>

namespace EndToEnd {

namespace {

unsigned Told(int seed) {
    constexpr unsigned most = 99'999;
    const unsigned told =
        seed != 0 ? static_cast<unsigned>(seed) : std::random_device()() % most + 1;
    std::cout << "seed: --gtest_random_seed=" << told << std::endl;
    return told;
}

} // namespace

RandomMoments::RandomMoments(int seed) : m_random(Told(seed)) {}

bool RandomMoments::WaitIn(const Process& program) {
    using Clock = std::chrono::steady_clock;
    constexpr double shorter = 0.5;
    constexpr double longer = 1.1;
    const std::chrono::duration<double> wait(
        std::uniform_real_distribution<double>(0, m_longest)(m_random));
    const auto moment = Clock::now() + std::chrono::duration_cast<Clock::duration>(wait);
    constexpr std::chrono::milliseconds step(1);
    while (Clock::now() + step < moment && !program.HasEnded())
        std::this_thread::sleep_for(step);
    if (!program.HasEnded())
        std::this_thread::sleep_until(moment);
    const bool isRunning = !program.HasEnded();
    m_longest *= isRunning ? longer : shorter;
    return isRunning;
}

} // namespace EndToEnd
