#include "Tools/SarvexTool/Bench/Core/Outcomes.h"

#include <gmock/gmock.h>

#include <utility>

namespace Bench {
namespace {

TEST(OutcomesTest, EachHasItsNameAndIsFoundByIt) {
    constexpr std::pair<Outcome, const char*> outcomes[] = {
        {Outcome::Measured, "measured"},
        {Outcome::Refused, "refused"},
        {Outcome::Uncalibrated, "uncalibrated"},
        {Outcome::ChainNotActive, "chain not active"},
        {Outcome::TimedOut, "time-out"},
        {Outcome::ConnectionLost, "connection lost"},
        {Outcome::OtherConfiguration, "other configuration"},
        {Outcome::NotRun, "not run"}};
    for (const auto& [outcome, name] : outcomes) {
        EXPECT_STREQ(NameOf(outcome), name);
        EXPECT_EQ(OutcomeNamed(name), outcome);
    }
    EXPECT_EQ(OutcomeNamed("Measured"), std::nullopt);
    EXPECT_EQ(OutcomeNamed(""), std::nullopt);
}

} // namespace
} // namespace Bench
