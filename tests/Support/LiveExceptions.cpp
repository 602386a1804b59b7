#include "Modules/xFramework/Utilities/Exception.h"

#include <gtest/gtest.h>

// Linked into every unit test program: no road through the code leaves an exception behind, on
// either target.

namespace {

class LiveExceptionCheck : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo& /*test*/) override { m_before = Count(); }

    void OnTestEnd(const testing::TestInfo& /*test*/) override {
        EXPECT_EQ(Count(), m_before) << "the test left an exception that nobody deleted";
    }

    static std::int64_t Count() { return Utilities::Exception::GetLiveCount(); }

    // What an earlier test left is told once.
    std::int64_t m_before = 0;
};

[[maybe_unused]] const bool added = [] {
    // Before the framework's own listener, which tells how a test has ended.
    testing::TestEventListeners& listeners = testing::UnitTest::GetInstance()->listeners();
    listeners.Append(new LiveExceptionCheck);
    return true;
}();

} // namespace
