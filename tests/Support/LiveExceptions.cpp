#include "Modules/xFramework/Utilities/Exception.h"

#include <gtest/gtest.h>

// Linked into every unit test program: the code deletes every exception, on
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
    // At the end of a test the listener that was added last is asked first: the framework's own,
    // which tells how the test has ended, knows of a failure here.
    testing::UnitTest::GetInstance()->listeners().Append(new LiveExceptionCheck);
    return true;
}();

} // namespace
