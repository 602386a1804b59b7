#include "Tools/Vemo/VemoSimulator/FaultRule.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace VemoSimulator {

using testing::HasSubstr;

namespace {

std::string ErrorOf(const std::string& rule) {
    try {
        const FaultRule parsed(rule);
        return "";
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

AnswerPlan PlanOf(const std::string& rule) {
    AnswerPlan plan;
    FaultRule(rule).ApplyTo(plan);
    return plan;
}

} // namespace

TEST(FaultRuleTest, ANumberMatchesThatCommandAlone) {
    const FaultRule rule("2:crlf");
    EXPECT_FALSE(rule.Matches(1, "CLI -1 -exit"));
    EXPECT_TRUE(rule.Matches(2, "CLI -1 -exit"));
    EXPECT_FALSE(rule.Matches(22, "CLI -1 -exit"));
}

TEST(FaultRuleTest, ATextMatchesCommandsThatHoldIt) {
    const FaultRule rule("text=-wifi-start:crlf");
    EXPECT_TRUE(rule.Matches(1, "CLI -1 -vemo -wifi-start"));
    EXPECT_TRUE(rule.Matches(7, "CLI -1 -vemo -wifi-start -exit"));
    EXPECT_FALSE(rule.Matches(1, "CLI -1 -vemo -wifi-stop"));
    EXPECT_FALSE(rule.Matches(1, "CLI -1 -vemo -WIFI-START"));
}

TEST(FaultRuleTest, AStarMatchesEveryCommand) {
    const FaultRule rule("*:crlf");
    EXPECT_TRUE(rule.Matches(1, "CLI -1 "));
    EXPECT_TRUE(rule.Matches(1000000, "CLI -1 -exit"));
    EXPECT_EQ(rule.Text(), "*:crlf");
}

TEST(FaultRuleTest, AWrongRuleSaysWhatIsWrong) {
    const struct {
        const char* rule;
        const char* error;
    } rows[] = {
        {"crlf", "a fault rule is written WHICH:FAULT, not 'crlf'"},
        {"0:crlf", "a fault rule begins with a number from 1, text=TEXT or *, not '0'"},
        {"-1:crlf", "a fault rule begins with a number from 1, text=TEXT or *, not '-1'"},
        {"text=:crlf", "a fault rule begins with a number from 1, text=TEXT or *, not 'text='"},
        {":crlf", "a fault rule begins with a number from 1, text=TEXT or *, not ''"},
        {"*:", "unknown fault ''"},
        {"*:frlc", "unknown fault 'frlc'"},
        {"*:crlf=1", "fault crlf takes no value"},
        {"*:crlf=", "fault crlf takes no value"},
        {"*:close-after", "fault close-after needs a number from 0 to 18446744073709551615"},
        {"*:close-after=x", "fault close-after needs a number from 0 to 18446744073709551615"},
        {"*:delay=86400001", "fault delay needs a number from 0 to 86400000"},
        {"*:split-mark=", "fault split-mark needs a number from 0 to 86400000"},
        {"*:big=1073741825", "fault big needs a number from 0 to 1073741824"},
        {"*:missing-chain", "fault missing-chain needs the chain A or B"},
        {"*:missing-chain=AB", "fault missing-chain needs the chain A or B"},
        {"*:return-code", "fault return-code needs a text of one line"},
        {"*:return-code=1\n2", "fault return-code needs a text of one line"},
        {"*:raw", "fault raw needs a file name"},
        {"*:raw=no/such/file", "fault raw cannot read the file no/such/file"},
        {"*:raw=.", "fault raw cannot read the file ."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.rule);
        EXPECT_EQ(ErrorOf(row.rule), row.error);
    }
}

TEST(FaultRuleTest, ANumberThatMayBeLeftOutHasADefault) {
    EXPECT_EQ(PlanOf("*:drip").pause, std::chrono::milliseconds(1));
    EXPECT_EQ(PlanOf("*:drip=20").pause, std::chrono::milliseconds(20));
    EXPECT_EQ(PlanOf("*:split-mark").pause, std::chrono::milliseconds(100));
    EXPECT_EQ(PlanOf("*:split-mark=0").pause, std::chrono::milliseconds(0));
}

TEST(FaultRuleTest, ARawAnswerIsReadFromItsFile) {
    const std::string content("a\0b\r\n\x1A\xFF", 7);
    const std::string path = "FaultRuleTest.raw";
    std::ofstream(path, std::ios::binary) << content;
    EXPECT_EQ(PlanOf("*:raw=" + path).rawAnswer, content);
    std::ofstream(path, std::ios::binary | std::ios::trunc).close();
    EXPECT_EQ(PlanOf("*:raw=" + path).rawAnswer, "");
    std::remove(path.c_str());
}

TEST(FaultRuleTest, AValueMayHoldColonsAndEqualSigns) {
    EXPECT_EQ(PlanOf("*:return-code=a:b=c").returnCode, "a:b=c");
}

TEST(FaultRuleTest, EveryFaultIsDescribedInALineOfItsOwn) {
    const std::string description = DescribeFaults();
    for (const std::string& name : FaultNames()) {
        SCOPED_TRACE(name);
        EXPECT_THAT("\n" + description, HasSubstr("\n  " + name));
    }
    EXPECT_THAT(description, HasSubstr("  close-after=N     closes after N bytes of the answer\n"));
}

} // namespace VemoSimulator
