#include "tests/Modules/xFramework/OSAL/CountedInterruptions.h"

#include <signal.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

namespace OSAL {
namespace {

constexpr int isHeld = 7;

/// Ends with that code if the signal has not ended the program.
void RaiseHeld(int signal) {
    const HeldInterruption held;
    const bool wasWanted = HeldInterruption::IsWanted();
    ::raise(signal);
    std::exit(!wasWanted && HeldInterruption::IsWanted() ? isHeld : 0);
}

void RaiseAndLetGo(int signal) {
    std::optional<HeldInterruption> first(std::in_place);
    std::optional<HeldInterruption> second(std::in_place);
    ::raise(signal);
    first.reset();
    EXPECT_TRUE(HeldInterruption::IsWanted());
    second.reset();
}

TEST(InterruptionTest, ASignalIsHeldAndEndsTheProgramWithTheLastThatHoldsIt) {
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        SCOPED_TRACE(signal);
        EXPECT_EXIT(RaiseHeld(signal), testing::ExitedWithCode(isHeld), "");
        EXPECT_EXIT(RaiseAndLetGo(signal), testing::KilledBySignal(signal), "");
    }
}

TEST(InterruptionTest, TheSecondSignalEndsTheProgramAtOnce) {
    const auto raiseTwice = [] {
        const HeldInterruption held;
        ::raise(SIGINT);
        ::raise(SIGINT);
    };
    EXPECT_EXIT(raiseTwice(), testing::KilledBySignal(SIGINT), "");
}

TEST(InterruptionTest, AnIgnoredSignalStaysIgnored) {
    const auto raiseIgnored = [] {
        ::signal(SIGHUP, SIG_IGN);
        RaiseHeld(SIGHUP);
    };
    EXPECT_EXIT(raiseIgnored(), testing::ExitedWithCode(0), "");
}

TEST(InterruptionTest, NothingIsHeldAfterwards) {
    const auto raiseAfterwards = [] {
        { const HeldInterruption held; }
        ::raise(SIGTERM);
    };
    EXPECT_EXIT(raiseAfterwards(), testing::KilledBySignal(SIGTERM), "");
}

TEST(InterruptionListenerTest, HearsOfEachSignal) {
    CountedInterruptions count;
    const InterruptionListener listener(count.Function());
    for (int round = 0; round < 3; ++round) {
        ::raise(SIGINT);
        count.WaitFor(2 * round + 1);
        ::raise(SIGTERM);
        count.WaitFor(2 * round + 2);
    }
    EXPECT_EQ(count.Count(), 6);
}

TEST(InterruptionListenerTest, HearsOfTheFirstHangUpOnly) {
    CountedInterruptions count;
    {
        const InterruptionListener listener(count.Function());
        ::raise(SIGHUP);
        ::raise(SIGHUP);
        ::raise(SIGINT);
        // What was raised before the end is told.
    }
    EXPECT_EQ(count.Count(), 2);
}

TEST(InterruptionListenerTest, HearsOfASignalThatIsHeld) {
    CountedInterruptions count;
    const InterruptionListener listener(count.Function());
    {
        const HeldInterruption held;
        ::raise(SIGINT);
        count.WaitFor(1);
        EXPECT_FALSE(HeldInterruption::IsWanted());
    }
    ::raise(SIGINT);
    count.WaitFor(2);
    EXPECT_EQ(count.Count(), 2);
}

TEST(InterruptionListenerTest, LeavesAnIgnoredSignalIgnored) {
    const auto before = ::signal(SIGHUP, SIG_IGN);
    CountedInterruptions count;
    {
        const InterruptionListener listener(count.Function());
        ::raise(SIGHUP);
    }
    EXPECT_EQ(count.Count(), 0);
    EXPECT_EQ(::signal(SIGHUP, before), SIG_IGN);
}

TEST(InterruptionListenerTest, NothingIsHeardAfterwards) {
    const auto raiseAfterwards = [] {
        CountedInterruptions count;
        { const InterruptionListener listener(count.Function()); }
        ::raise(SIGTERM);
    };
    EXPECT_EXIT(raiseAfterwards(), testing::KilledBySignal(SIGTERM), "");
}

} // namespace
} // namespace OSAL
