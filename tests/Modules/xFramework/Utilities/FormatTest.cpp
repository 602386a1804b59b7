#include "Modules/xFramework/Utilities/Format.h"

#include "tests/Modules/xFramework/Utilities/ProviderGuard.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Utilities {
namespace {

struct FormatCase {
    std::string templateText;
    std::vector<std::string> arguments;
    std::string text;
};

class FormatTableTest : public testing::TestWithParam<std::vector<FormatCase>> {};

TEST_P(FormatTableTest, GivesTheWholeTextWithTextsAndWithLiterals) {
    for (const FormatCase& each : GetParam()) {
        SCOPED_TRACE(each.templateText);
        Format withTexts(each.templateText);
        Format withLiterals(each.templateText);
        for (const std::string& argument : each.arguments) {
            withTexts % argument;
            withLiterals % argument.c_str();
        }
        EXPECT_EQ(withTexts.Text(), each.text);
        EXPECT_EQ(withLiterals.Text(), each.text);
    }
}

INSTANTIATE_TEST_SUITE_P(Placeholders, FormatTableTest,
                         testing::Values(std::vector<FormatCase>{
                             {"${1}-${2}", {"a", "b"}, "a-b"},
                             {"${1}-${2}", {"a"}, "a-${2}"},
                             {"${1}-${2}", {}, "${1}-${2}"},
                             {"${2}-${1}", {"a", "b"}, "b-a"},
                             {"${1} and ${1}", {"x"}, "x and x"},
                             {"${1}${1}${1}", {"ab"}, "ababab"},
                             {"${1}, ${2}, ${1}, ${2}", {"x", "y"}, "x, y, x, y"},
                             {"", {"a", "b"}, ""},
                             {"no placeholder", {"a", "b"}, "no placeholder"},
                             {"[${1}]", {""}, "[]"},
                             {"${1}", {""}, ""},
                             {"Chain ${1} \\(${2}\\) (-?\\d+\\.*\\d*) dBm",
                              {"A", "1"},
                              "Chain A \\(1\\) (-?\\d+\\.*\\d*) dBm"},
                             {"${1} = ${2}, ", {"Rate", "-"}, "Rate = -, "}}));

INSTANTIATE_TEST_SUITE_P(MalformedPlaceholders, FormatTableTest,
                         testing::Values(std::vector<FormatCase>{{"${", {"a"}, "${"},
                                                                 {"${}", {"a"}, "${}"},
                                                                 {"${x}", {"a"}, "${x}"},
                                                                 {"${ 1}", {"a"}, "${ 1}"},
                                                                 {"${1 }", {"a"}, "${1 }"},
                                                                 {"${01}", {"a"}, "${01}"},
                                                                 {"${+1}", {"a"}, "${+1}"},
                                                                 {"${0}", {"a"}, "${0}"},
                                                                 {"${1", {"a"}, "${1"},
                                                                 {"$1", {"a"}, "$1"},
                                                                 {"$ {1}", {"a"}, "$ {1}"},
                                                                 {"{1}", {"a"}, "{1}"},
                                                                 {"$${1}", {"a"}, "$a"},
                                                                 {"${${1}}", {"2", "b"}, "b"}}));

INSTANTIATE_TEST_SUITE_P(
    ManyArguments, FormatTableTest,
    testing::Values(std::vector<FormatCase>{
        {"${10}", {"a"}, "${10}"},
        {"${1}${10}", {"a", "b"}, "a${10}"},
        {"${1}${10}${11}", {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k"}, "ajk"}}));

INSTANTIATE_TEST_SUITE_P(PlaceholdersInsideArguments, FormatTableTest,
                         testing::Values(std::vector<FormatCase>{
                             // A later argument fills what an earlier one brought,
                             // an earlier one is not applied again.
                             {"${1}", {"${2}", "b"}, "b"},
                             {"${2}", {"a", "${1}"}, "${1}"},
                             // The search starts at the front again, so what is left
                             // of two placeholders may be a third.
                             {"$${1}{1}", {""}, ""},
                             {"${${1}1}", {""}, ""},
                             {"$${1}{1}", {"x"}, "$x{1}"}}));

TEST(FormatTest, AppliesArgumentsOneAfterTheOther) {
    Format message("${1}, ${2}");
    message % "a";
    EXPECT_EQ(message.Text(), "a, ${2}");
    message % std::string("b");
    EXPECT_EQ(message.Text(), "a, b");
    message % "c";
    EXPECT_EQ(message.Text(), "a, b");
}

TEST(FormatTest, ChainsOnItself) {
    Format message("${1}");
    EXPECT_EQ(&(message % "a" % std::string("b")), &message);
}

TEST(FormatTest, TakesOneToFiveTextsAtOnce) {
    const std::string all = "${1}${2}${3}${4}${5}";
    EXPECT_EQ(Format(all, "a").Text(), "a${2}${3}${4}${5}");
    EXPECT_EQ(Format(all, "a", std::string("b")).Text(), "ab${3}${4}${5}");
    EXPECT_EQ(Format(all, "a", "b", "c").Text(), "abc${4}${5}");
    EXPECT_EQ(Format(all, "a", "b", "c", "d").Text(), "abcd${5}");
    EXPECT_EQ(Format(all, "a", "b", "c", "d", std::string("e")).Text(), "abcde");
}

TEST(FormatTest, IsUsedAsTheTextItHolds) {
    const Format message("File ${1} is a link", "Socket.cfg");
    const std::string& text = message;
    EXPECT_EQ(text, "File Socket.cfg is a link");
    EXPECT_EQ((Format("[${1}]") % message).Text(), "[File Socket.cfg is a link]");
}

TEST(FormatTest, IsAPlainValue) {
    Format first("${1}${2}");
    first % "a";
    Format second = first;
    second % "b";
    EXPECT_EQ(first.Text(), "a${2}");
    EXPECT_EQ(second.Text(), "ab");
}

TEST(FormatTest, RendersAMissingTextAsNothing) {
    const char* const missing = nullptr;
    EXPECT_EQ((Format("[${1}]") % missing).Text(), "[]");
}

TEST(FormatTest, TakesALongArgumentManyTimes) {
    std::string templateText;
    std::string expected;
    const std::string argument(10000, 'x');
    for (int i = 0; i < 20; ++i) {
        templateText += "${1};";
        expected += argument + ";";
    }
    EXPECT_EQ(Format(templateText, argument).Text(), expected);
}

/// Replaces each $(v) by the second argument's placeholder.
void ExpandV(std::string& text) {
    const std::string reference = "$(v)";
    for (std::size_t hit = text.find(reference); hit != std::string::npos;
         hit = text.find(reference))
        text.replace(hit, reference.size(), "<${2}>");
}

class FormatWithProviderTest : public testing::Test {
protected:
    ProviderGuard guard{&ExpandV};
};

TEST_F(FormatWithProviderTest, ExpandsTheTemplateBeforeAnyArgument) {
    EXPECT_EQ(Format("$(v) ${1}").Text(), "<${2}> ${1}");
    EXPECT_EQ((Format("$(v) ${1}") % "a" % "b").Text(), "<b> a");
}

TEST_F(FormatWithProviderTest, ExpandsTextArgumentsAndLeavesLiteralsVerbatim) {
    EXPECT_EQ((Format("${1}") % std::string("[$(v)]")).Text(), "[<${2}>]");
    EXPECT_EQ((Format("${1}") % "[$(v)]").Text(), "[$(v)]");
    EXPECT_EQ(Format("${1}", std::string("[$(v)]")).Text(), "[<${2}>]");
    EXPECT_EQ(Format("${1}", "[$(v)]").Text(), "[$(v)]");
}

TEST_F(FormatWithProviderTest, LeavesTheCallersTextAsItWas) {
    const std::string argument = "$(v)";
    const std::string templateText = "$(v) ${1}";
    EXPECT_EQ(Format(templateText, argument).Text(), "<${2}> <${2}>");
    EXPECT_EQ(argument, "$(v)");
    EXPECT_EQ(templateText, "$(v) ${1}");
}

TEST_F(FormatWithProviderTest, DoesNotExpandWhatArgumentAndTemplateFormTogether) {
    EXPECT_EQ((Format("$${1}") % std::string("(v)")).Text(), "$(v)");
}

TEST(FormatFillTemplateTest, BuildsWhatFormatBuilds) {
    EXPECT_EQ(FillTemplate("${1} = ${2}, ", {"Rate", "-"}), "Rate = -, ");
    EXPECT_EQ(FillTemplate("[${1}]", {""}), "[]");
    EXPECT_EQ(FillTemplate("${1}${2}", {"a"}), "a${2}");
    EXPECT_EQ(FillTemplate("plain", {"a", "b"}), "plain");
    EXPECT_EQ(FillTemplate("a ${2} b", {"x", "y"}), Format("a ${2} b", "x", "y").Text());
    EXPECT_EQ(FillTemplate("a ${2} b", {"x", "y"}), "a y b");
    EXPECT_EQ(FillTemplate("${1}${3}", {"x", "y", "z"}), "xz");
    EXPECT_EQ(FillTemplate("", {"a"}), "");
}

TEST(FormatFillTemplateTest, WhatIsInsertedIsNotSearched) {
    EXPECT_EQ(FillTemplate("<${1}><${2}>", {"${1}", "b"}), "<${1}><b>");
    EXPECT_EQ(FillTemplate("<${1}><${2}>", {"${2}", "b"}), "<${2}><b>");
    EXPECT_EQ(FillTemplate("<${1}><${2}>", {"${", "1}"}), "<${><1}>");
    EXPECT_EQ(FillTemplate("$${1}{1}", {""}), "${1}");
}

TEST_F(FormatWithProviderTest, ExpandsTheTemplateToFillAndItsArguments) {
    EXPECT_EQ(FillTemplate("$(v) ${1}", {"[$(v)]"}), "<${2}> [<${2}>]");
}

} // namespace
} // namespace Utilities
