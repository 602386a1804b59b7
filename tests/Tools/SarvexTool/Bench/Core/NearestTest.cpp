#include "Tools/SarvexTool/Bench/Core/Nearest.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace Bench {
namespace {

constexpr std::array<const char*, 5> known{"Band", "Bandwidth", "Bandwidth Mode", "Channel",
                                           "Specific Resource unit"};

TEST(NearestTest, ANameWithFewMistakesIsFound) {
    for (const auto& [wrong, right] : std::array<std::pair<const char*, const char*>, 7>{
             {{"band", "Band"},
              {"Bnad", "Band"},
              {"Chanel", "Channel"},
              {"BANDWIDTH_MODE", "Bandwidth Mode"},
              {"Bandwith", "Bandwidth"},
              {"Specific Resource Unit", "Specific Resource unit"},
              {"\xEF\xBB\xBF"
               "Band",
               "Band"}}})
        EXPECT_EQ(NearestName(wrong, known), right);
}

TEST(NearestTest, ANameOfSomethingElseIsNot) {
    for (const char* const wrong : {"", "Antenna", "5", "Bd", "Power"})
        EXPECT_EQ(NearestName(wrong, known), "") << wrong;
    EXPECT_EQ(NearestName(std::string(1'000'000, 'B'), known), "");
}

} // namespace
} // namespace Bench
