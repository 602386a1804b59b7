#include "tests/EndToEnd/BenchRun/MergedRunFixture.h"

#include <csignal>

// A merge that is asked to end takes back what it has begun; SIGKILL is in MergedRunTest.cpp.

namespace EndToEnd {
namespace {

class EndedMergeTest : public MergedRunFixture, public testing::WithParamInterface<int> {};

TEST_P(EndedMergeTest, LeavesNothingBesideItsPlace) {
    Split(DependentLines(40), 20);
    RunAll();
    const auto merge = tests.Start({"merge", "parts", "-o", "all"});
    while (!std::filesystem::exists(tests.Path("all.part")) && !merge->HasEnded()) {
    }
    merge->Interrupt({"", GetParam()});
    merge->Wait();
    EXPECT_FALSE(std::filesystem::exists(tests.Path("all.part")));
    if (std::filesystem::exists(tests.Path("all")))
        ExpectSameAsAlone();
}

INSTANTIATE_TEST_SUITE_P(, EndedMergeTest, testing::Values(SIGINT, SIGTERM, SIGHUP));

} // namespace
} // namespace EndToEnd
