#include "Tools/SarvexTool/Bench/Files/ResultTree.h"
#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Bench {
namespace {

/// The country code, or why it is not known.
std::string Told(const DeviceFacts& facts) {
    EXPECT_EQ(facts.countryCode.has_value(), facts.whyUnknown.empty());
    return facts.countryCode ? "code " + *facts.countryCode : facts.whyUnknown;
}

std::string Read(const std::string& xml) {
    std::istringstream stream(xml);
    return Told(ReadResultTree(stream));
}

TEST(ResultTreeTest, CountryCodeIsInTheFirstElement) {
    EXPECT_EQ(Read("<?xml version=\"1.0\" ?>\n<PowerTable MCC=\"US\" OTPVersion=\"-\">\n"
                   "\t<Band MCC=\"DE\" value=\"5\"/>\n</PowerTable>\n"),
              "code US");
    EXPECT_EQ(Read("<PowerTable MCC=\"-\"/>"), "the daemon told none");
}

TEST(ResultTreeTest, WhatIsNotAResultIsSaid) {
    EXPECT_EQ(Read(""), "result.xml is empty, because the run did not reach its end");
    EXPECT_EQ(Read("<PowerTable OTPVersion=\"-\"/>"),
              "result.xml is not the result of a power test");
    EXPECT_EQ(Read("<html MCC=\"US\"/>"), "result.xml is not the result of a power test");
}

TEST(ResultTreeTest, WhatIsNotXmlToItsEndIsSaidWithItsLine) {
    const std::string start = "<PowerTable MCC=\"US\">\n";
    EXPECT_EQ(Read("5,A,80\n"), "result.xml is not XML: line 1: syntax error");
    EXPECT_EQ(Read(start), "result.xml is not XML: line 2: no element found");
    for (const char* broken :
         {"<Band value=\"a&b\"/></PowerTable>", "<Band value=\"<\"/></PowerTable>",
          "<chainA+B/></PowerTable>", "<Band value=\"\xFF\"/></PowerTable>",
          "<Band value=\"\x1B\"/></PowerTable>"})
        EXPECT_EQ(Read(start + broken),
                  "result.xml is not XML: line 2: not well-formed (invalid token)")
            << broken;
}

TEST(ResultTreeTest, EntitiesCannotMakeATextGrow) {
    const std::string bomb = "<!DOCTYPE p [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;\">]>"
                             "<PowerTable MCC=\"&b;\"/>";
    EXPECT_EQ(Read(bomb), "code &b;");
    EXPECT_EQ(Read("<!DOCTYPE p SYSTEM \"file:///etc/passwd\"><PowerTable MCC=\"US\"/>"),
              "code US");
}

std::string Nested(int depth) {
    std::string xml = "<PowerTable MCC=\"US\">";
    for (int level = 1; level < depth; ++level)
        xml += "<a>";
    for (int level = 1; level < depth; ++level)
        xml += "</a>";
    return xml + "</PowerTable>";
}

TEST(ResultTreeTest, DepthThatNoResultHasIsRefused) {
    EXPECT_EQ(Read(Nested(10000)), "code US");
    for (const int depth : {10001, 1000000})
        EXPECT_EQ(Read(Nested(depth)), "result.xml is not the result of a power test: its elements "
                                       "are in one another too deeply");
}

TEST(ResultTreeTest, SizeIsNoMatter) {
    const std::string large(1 << 20, 'x');
    EXPECT_EQ(Read("<PowerTable MCC=\"US\" other=\"" + large + "\">" + large + "</PowerTable>"),
              "code US");
}

TEST(ResultTreeTest, FileThatCannotBeReadIsSaid) {
    const TestSupport::TemporaryDirectory directory;
    EXPECT_EQ(Told(ReadResultTree(directory.Path("result.xml"))), "result.xml is missing");
    EXPECT_EQ(Told(ReadResultTree(directory.Path())), "result.xml cannot be read");
    EXPECT_EQ(Told(ReadResultTree(directory.Create("result.xml", "<PowerTable MCC=\"US\"/>"))),
              "code US");
}

} // namespace
} // namespace Bench
