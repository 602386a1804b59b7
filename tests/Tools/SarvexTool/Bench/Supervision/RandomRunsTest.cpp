#include "tests/Tools/SarvexTool/Bench/Supervision/Support/SimulatedRun.h"

#include <gmock/gmock.h>

#include <random>

namespace Bench {
namespace {

TEST(RandomRunsTest, PromisesAreKeptWhateverHappens) {
    constexpr unsigned runs = 5'000;
    for (unsigned seed = 0; seed < runs; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        SimulatedRun run([&random](std::size_t count) { return random() % count; });
        ASSERT_NO_THROW(run.Run());
    }
}

} // namespace
} // namespace Bench
