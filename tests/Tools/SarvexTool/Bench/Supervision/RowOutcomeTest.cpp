#include "Tools/SarvexTool/Bench/Supervision/RowOutcome.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

struct Case {
    const char* row;
    const char* answer;
    LineOutcome outcome;
};

TEST(RowOutcomeTest, RowSaysWhetherThereArePowersAndTheAnswerWhyNot) {
    OwnSettings own;
    own.at(static_cast<std::size_t>(Setting::Channel)) = "42";
    const ChainOutcome measured;
    const ChainOutcome inactive{Outcome::ChainNotActive, ""};
    const Case cases[] = {
        {"5,12.5,13\n", "Sarvex tool RETURN CODE\n0\n", {measured, measured, true}},
        {"5,12.5,NA\r\n", "Sarvex tool RETURN CODE\n0\n", {measured, inactive, true}},
        {",NA,12\n", "", {inactive, measured, true}},
        {"5,NA,NA\n",
         "Sarvex tool ERROR\nno such channel\nSarvex tool RETURN CODE\n2\n",
         {{Outcome::Refused, "no such channel"}, {Outcome::Refused, "no such channel"}, false}},
        {"5,NA,7\n",
         "Sarvex tool ERROR\nodd\nSarvex tool RETURN CODE\n0\n",
         {{Outcome::Refused, "odd"}, measured, true}},
        {"5,12,NA\n",
         "Sarvex tool RETURN CODE\n3\n",
         {{Outcome::Refused, "return code 3"}, {Outcome::Refused, "return code 3"}, false}},
        {"5,12,NA\n",
         "uncalibrated\nSarvex tool RETURN CODE\n0\n",
         {{Outcome::Uncalibrated, "uncalibrated"}, {Outcome::Uncalibrated, "uncalibrated"}, true}},
        {"5,12,NA\n",
         "Target Power: Channel 36 Chain A (1) 12 dBm\n",
         {{Outcome::OtherConfiguration, "Channel 36 in place of 42"}, inactive, true}}};
    for (const Case& test : cases) {
        SCOPED_TRACE(test.answer);
        EXPECT_EQ(OutcomeOfRow(test.row, ReadAnswer(test.answer), own), test.outcome);
    }
}

} // namespace
} // namespace Bench
