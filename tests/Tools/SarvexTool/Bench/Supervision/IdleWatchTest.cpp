#include "Tools/SarvexTool/Bench/Supervision/IdleWatch.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

bool LostAfterAnAnswer(IdleWatch& watch) {
    watch.Answered();
    return watch.Lost();
}

TEST(IdleWatchTest, SettingsAreDoubtfulUntilTheyAreSentOverAConnectionThatLasts) {
    IdleWatch watch;
    EXPECT_TRUE(watch.IsMissing());
    watch.Connecting();
    EXPECT_FALSE(watch.IsMissing());
    watch.Settle();
    EXPECT_TRUE(watch.IsDoubtful());
    watch.Connected();
    EXPECT_TRUE(watch.IsDoubtful());
    watch.Settle();
    EXPECT_FALSE(watch.IsDoubtful());
    watch.Doubt();
    EXPECT_TRUE(watch.IsDoubtful());
}

TEST(IdleWatchTest, DaemonThatWasThereAllTheTimeClosesWhatIsNotUsed) {
    IdleWatch watch;
    EXPECT_TRUE(LostAfterAnAnswer(watch));
    EXPECT_TRUE(LostAfterAnAnswer(watch));
    EXPECT_FALSE(watch.ClosesIdle());
    EXPECT_FALSE(LostAfterAnAnswer(watch));
    EXPECT_TRUE(watch.ClosesIdle());
    EXPECT_FALSE(watch.IsMissing());
    EXPECT_TRUE(watch.IsDoubtful());
    watch.Settle();
    EXPECT_FALSE(watch.IsDoubtful());
    watch.BeginSegment();
    EXPECT_TRUE(watch.IsDoubtful());
}

TEST(IdleWatchTest, DaemonThatWasAwayInBetweenHasStartedAnew) {
    IdleWatch watch;
    for (int time = 0; time < 5; ++time) {
        EXPECT_TRUE(LostAfterAnAnswer(watch));
        EXPECT_TRUE(LostAfterAnAnswer(watch));
        if (time % 2 == 0)
            watch.Failed();
        else
            watch.DaemonGone();
    }
    EXPECT_FALSE(watch.ClosesIdle());
}

// As where a port forward takes connections while the daemon is away.
TEST(IdleWatchTest, LossesWithoutAnAnswerInBetweenAreOneOutage) {
    IdleWatch watch;
    EXPECT_TRUE(LostAfterAnAnswer(watch));
    for (int time = 0; time < 5; ++time) {
        watch.Connected();
        EXPECT_FALSE(watch.Lost());
        EXPECT_TRUE(watch.IsMissing());
        EXPECT_TRUE(watch.IsDoubtful());
    }
    EXPECT_TRUE(LostAfterAnAnswer(watch));
    EXPECT_FALSE(watch.ClosesIdle());
    EXPECT_FALSE(LostAfterAnAnswer(watch));
    EXPECT_TRUE(watch.ClosesIdle());
}

TEST(IdleWatchTest, ConnectionThatIsLostWithAnExchangeWasNotClosedForBeingUnused) {
    IdleWatch watch;
    for (int time = 0; time < 5; ++time) {
        watch.Answered();
        watch.DaemonGone();
        EXPECT_FALSE(watch.Lost());
    }
    EXPECT_FALSE(watch.ClosesIdle());
}

TEST(IdleWatchTest, ConnectionThatLastedForALineWasNotClosedForBeingUnused) {
    IdleWatch watch;
    for (int time = 0; time < 5; ++time) {
        watch.Connected();
        watch.Settle();
        watch.EndLine();
        EXPECT_TRUE(LostAfterAnAnswer(watch));
    }
    EXPECT_FALSE(watch.ClosesIdle());
}

TEST(IdleWatchTest, DaemonThatIsAwayBetweenLinesClosesNothing) {
    IdleWatch watch;
    for (int time = 0; time < 5; ++time) {
        EXPECT_TRUE(LostAfterAnAnswer(watch));
        // Behind a port forward, which takes the next connection and closes it while the daemon is
        // away; the connection of the next start lasts.
        watch.Connected();
        EXPECT_FALSE(watch.Lost());
        watch.Connected();
        watch.Settle();
        watch.EndLine();
    }
    EXPECT_FALSE(watch.ClosesIdle());
}

} // namespace
} // namespace Bench
