#include "Modules/xFramework/Core/Classes/AppendWithinLimit.h"

#include <gtest/gtest.h>

#include <list>

namespace {

struct ShortList : std::list<int> {
    static std::size_t max_size() { return 2; }
};

TEST(AppendWithinLimit, RefusesWhatExceedsTheMaximumLength) {
    ShortList list;
    Core::AppendWithinLimit(list, 1);
    Core::AppendWithinLimit(list, 2);
    try {
        Core::AppendWithinLimit(list, 3);
        FAIL() << "nothing thrown";
    } catch (const std::length_error& error) {
        EXPECT_STREQ(error.what(), "list too long");
    }
    EXPECT_EQ(list, (std::list<int>{1, 2}));
}

} // namespace
