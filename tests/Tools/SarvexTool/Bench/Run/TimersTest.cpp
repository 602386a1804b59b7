#include "Tools/SarvexTool/Bench/Run/Timers.h"

#include "tests/Tools/SarvexTool/Bench/Run/LoopFixture.h"

#include <vector>

namespace Bench {
namespace {

using std::chrono::milliseconds;

class TimersTest : public LoopFixture {
protected:
    void RunUntilExpired(int timer) {
        RunUntil([&] { return !expired.empty() && expired.back() == timer; });
    }

    std::vector<int> expired;
    Timers timers{loop, [this](int timer) { expired.push_back(timer); }};
};

TEST_F(TimersTest, EachExpiresOnce) {
    timers.Set(2, milliseconds(30));
    timers.Set(1, milliseconds(1));
    RunUntilExpired(2);
    EXPECT_EQ(expired, (std::vector{1, 2}));
}

TEST_F(TimersTest, OneThatIsSetAnewBeginsAnew) {
    timers.Set(1, milliseconds(1));
    timers.Set(1, milliseconds(30));
    timers.Set(2, milliseconds(10));
    RunUntilExpired(1);
    EXPECT_EQ(expired, (std::vector{2, 1}));
}

TEST_F(TimersTest, ACancelledOneDoesNotExpire) {
    timers.Set(1, milliseconds(1));
    timers.Cancel(1);
    timers.Cancel(7);
    timers.Set(2, milliseconds(10));
    RunUntilExpired(2);
    EXPECT_EQ(expired, std::vector{2});
}

TEST_F(TimersTest, OneThatIsCancelledAfterItsTimeDoesNotExpireEither) {
    std::vector<int> both;
    Timers others(loop, [&](int timer) {
        both.push_back(timer);
        others.Cancel(1 - timer);
    });
    others.Set(0, milliseconds(0));
    others.Set(1, milliseconds(0));
    timers.Set(3, milliseconds(10));
    RunUntilExpired(3);
    EXPECT_EQ(both.size(), 1u);
}

TEST_F(TimersTest, OneMayBeSetWhenItExpires) {
    int count = 0;
    Timers repeated(loop, [&](int timer) {
        if (++count < 3)
            repeated.Set(timer, milliseconds(1));
    });
    repeated.Set(5, milliseconds(1));
    RunUntil([&] { return count == 3; });
}

TEST_F(TimersTest, NoneExpiresWhenTheyAreGone) {
    bool isExpired = false;
    {
        Timers gone(loop, [&](int) { isExpired = true; });
        gone.Set(1, milliseconds(0));
    }
    timers.Set(1, milliseconds(5));
    RunUntilExpired(1);
    EXPECT_FALSE(isExpired);
}

} // namespace
} // namespace Bench
