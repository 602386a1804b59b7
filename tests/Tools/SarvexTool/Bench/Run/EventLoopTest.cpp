#include "Tools/SarvexTool/Bench/Run/EventLoop.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>

namespace Bench {
namespace {

TEST(EventLoopTest, RunsWhatIsPostedInOrderUntilItIsStopped) {
    EventLoop loop;
    std::string order;
    std::thread thread([&] {
        loop.Post([&] { order += "a"; });
        loop.Post([&] { order += "b"; });
        loop.Post([&] { loop.Stop(); });
    });
    loop.Run();
    thread.join();
    EXPECT_EQ(order, "ab");
}

TEST(EventLoopTest, GoesOnAfterAnException) {
    EventLoop loop;
    bool isRun = false;
    loop.Post([] { throw std::runtime_error("failed"); });
    loop.Post([&] {
        isRun = true;
        loop.Stop();
    });
    EXPECT_THROW(loop.Run(), std::runtime_error);
    EXPECT_FALSE(isRun);
    loop.Run();
    EXPECT_TRUE(isRun);
}

} // namespace
} // namespace Bench
