#include "Tools/Vemo/VemoSimulator/FaultTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <set>

namespace VemoSimulator {

using namespace std::chrono_literals;

namespace {

AnswerPlan Apply(const std::string& name, const FaultValue& value = {}, AnswerPlan plan = {}) {
    std::ranges::find(FaultTable(), name, &FaultRow::name)->apply(plan, value);
    return plan;
}

} // namespace

TEST(FaultTableTest, EachFaultHasANameAndADescriptionOfItsOwn) {
    std::set<std::string> names;
    std::set<std::string> descriptions;
    for (const FaultRow& row : FaultTable()) {
        names.emplace(row.name);
        descriptions.emplace(row.description);
    }
    EXPECT_EQ(names.size(), FaultTable().size());
    EXPECT_EQ(descriptions.size(), FaultTable().size());
}

TEST(FaultTableTest, SomeFaultsSendNothing) {
    const struct {
        const char* name;
        Ending ending;
    } rows[] = {
        {"close-before", Ending::Close}, {"reset", Ending::Reset}, {"no-answer", Ending::StayOpen}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const AnswerPlan plan = Apply(row.name);
        EXPECT_EQ(plan.cutAfter, 0U);
        EXPECT_EQ(plan.ending, row.ending);
    }
}

TEST(FaultTableTest, FaultsOfSendingChangeTheSending) {
    EXPECT_EQ(Apply("close-after", {100, ""}).cutAfter, 100U);
    EXPECT_EQ(Apply("close-after", {100, ""}).ending, Ending::Close);
    EXPECT_TRUE(Apply("split-mark", {30, ""}).isMarkApart);
    EXPECT_EQ(Apply("split-mark", {30, ""}).pause, 30ms);
    EXPECT_TRUE(Apply("drip", {2, ""}).isDripped);
    EXPECT_EQ(Apply("drip", {2, ""}).pause, 2ms);
}

TEST(FaultTableTest, ADelayComesOnTopOfTheLatency) {
    AnswerPlan plan;
    plan.delay = 40ms;
    EXPECT_EQ(Apply("delay", {2, ""}, plan).delay, 42ms);
}

TEST(FaultTableTest, FaultsOfWritingChangeTheWriting) {
    EXPECT_FALSE(Apply("no-mark").hasEndMark);
    EXPECT_EQ(Apply("no-mark").ending, Ending::Close);
    EXPECT_TRUE(Apply("crlf").hasCrLf);
    EXPECT_EQ(Apply("nul", {12, ""}).nulPosition, 12U);
    EXPECT_EQ(Apply("raw", {0, "bytes"}).rawAnswer, "bytes");
}

TEST(FaultTableTest, FaultsOfContentChangeTheContent) {
    EXPECT_EQ(Apply("missing-chain", {0, "B"}, Apply("missing-chain", {0, "A"})).missingChains,
              "AB");
    EXPECT_TRUE(Apply("uncalibrated").isUncalibrated);
    EXPECT_EQ(Apply("return-code", {0, "abc"}).returnCode, "abc");
    EXPECT_EQ(Apply("big", {5, ""}).fillerBytes, 5U);
    EXPECT_EQ(Apply("long-line", {6, ""}).longLineBytes, 6U);
}

} // namespace VemoSimulator
