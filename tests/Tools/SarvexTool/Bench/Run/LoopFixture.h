#pragma once

#include "Tools/SarvexTool/Bench/Run/EventLoop.h"

// Asio 1.18 forgets to include it.
#include <utility>

#include <boost/asio/io_context.hpp>

#include <gtest/gtest.h>

#include <chrono>
#include <future>

namespace Bench {

class LoopFixture : public testing::Test {
protected:
    /// Runs the loop until the condition holds, or for so long that it never will.
    template <typename Condition>
    void RunUntil(const Condition& condition) {
        using Clock = std::chrono::steady_clock;
        const auto patience = Clock::now() + std::chrono::seconds(60);
        while (!condition() && Clock::now() < patience)
            loop.Context().run_one_for(std::chrono::milliseconds(5));
        ASSERT_TRUE(condition());
    }

    template <typename Value>
    Value RunUntilThereIs(std::future<Value>& future) {
        RunUntil(
            [&] { return future.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
        return future.get();
    }

    /// Calls back what has happened already.
    void RunWhatIsReady() { loop.Context().poll(); }

    EventLoop loop;
};

} // namespace Bench
