#include "Modules/xFramework/Core/Classes/ElementTypes.h"

#include <gtest/gtest.h>

#include <sstream>
#include <type_traits>

namespace {

template <typename First, typename... Rest>
constexpr bool AreDistinct() {
    if constexpr (sizeof...(Rest) == 0)
        return true;
    else
        return (!std::is_same_v<First, Rest> && ...) && AreDistinct<Rest...>();
}

static_assert(AreDistinct<Core::Int8, Core::UInt8, Core::Int16, Core::UInt16, Core::Int,
                          Core::UInt32, Core::Long, Core::Int64, Core::UInt64, double, bool>());
static_assert(!Core::IntegerElement<Core::Long>);
static_assert(!Core::IntegerElement<bool>);

TEST(ElementTypesTest, LongIsWrittenAndReadAsItsNumber) {
    std::stringstream stream;
    stream << Core::Long{-12};
    EXPECT_EQ(stream.str(), "-12");
    Core::Long read;
    stream >> read;
    EXPECT_EQ(read, Core::Long{-12});
}

TEST(ElementTypesTest, LongKeepsTheRangeOf32BitsOnEveryPlatform) {
    std::istringstream stream("2147483648");
    Core::Long read;
    stream >> read;
    EXPECT_TRUE(stream.fail());
}

TEST(ElementTypesTest, LongsAreOrderedByTheirNumbers) {
    EXPECT_GT(Core::Long{2}, Core::Long{-3});
    EXPECT_FALSE(Core::Long{2} > Core::Long{2});
}

} // namespace
