#include "Tools/SarvexTool/Bench/Output/Page/Page.h"
#include "tests/Tools/SarvexTool/Bench/Output/Page/PageFixture.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class PageTest : public testing::Test, protected PageFixture {
protected:
    std::string PageOf(std::string_view rate, const std::string& subject = "result.csv") {
        const RunResult run = RunOf({{"36", rate, "12"}});
        return Written(WritePage, Page{"Report", subject, {}, run});
    }
};

std::size_t Count(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t place = text.find(part); place != std::string::npos;
         place = text.find(part, place + 1))
        ++count;
    return count;
}

TEST_F(PageTest, EveryPartOfTheTemplateIsFilled) {
    const std::string page = PageOf("MCS0");
    EXPECT_THAT(page, StartsWith("<!DOCTYPE html>\n"));
    for (const char* const mark :
         {"{{title}}", "{{body}}", "{{head}}", "{{data}}", "{{style}}", "{{shared-script}}",
          "{{script}}", "{{plot-style}}", "{{plot-script}}"})
        EXPECT_THAT(page, Not(HasSubstr(mark)));
    EXPECT_THAT(page, HasSubstr("<title>result.csv - Report</title>"));
    EXPECT_THAT(page, HasSubstr("<h1>result.csv</h1>"));
    EXPECT_THAT(page, HasSubstr("{\"columns\":["));
    EXPECT_THAT(page, HasSubstr("var uPlot="));
    EXPECT_THAT(page, HasSubstr(".uplot,"));
    EXPECT_THAT(page, HasSubstr("prefers-color-scheme: dark"));
    EXPECT_THAT(page, testing::EndsWith("</html>\n"));
}

TEST_F(PageTest, NothingIsAskedOfTheNetwork) {
    const std::string page = PageOf("MCS0");
    EXPECT_THAT(page,
                HasSubstr("<meta http-equiv=\"Content-Security-Policy\" content=\"default-src "
                          "'none'; script-src 'unsafe-inline'; style-src 'unsafe-inline'; "
                          "img-src data:; base-uri 'none'; form-action 'none'\">"));
    EXPECT_THAT(page, HasSubstr("<link rel=\"icon\" href=\"data:,\">"));
    EXPECT_EQ(Count(page, " src="), 0U);
    EXPECT_EQ(Count(page, "@import"), 0U);
}

TEST_F(PageTest, WhatLooksLikeTheTemplateInATextIsText) {
    EXPECT_THAT(PageOf("MCS0", "{{data}}"), HasSubstr("<h1>{{data}}</h1>"));
}

TEST_F(PageTest, NoTextOfARunBeginsOrEndsAnElement) {
    const std::string plain = PageOf("MCS0");
    const std::string hostile =
        PageOf("</script><script>alert(1)</script><!--", "</title><script>");
    for (const char* const part : {"<script", "</script", "<!--", "</title", "<style", "</style"})
        EXPECT_EQ(Count(hostile, part), Count(plain, part)) << part;
}

TEST_F(PageTest, ThePageIsTheSameForTheSameRun) {
    EXPECT_EQ(PageOf("MCS0"), PageOf("MCS0"));
}

} // namespace
} // namespace Bench
