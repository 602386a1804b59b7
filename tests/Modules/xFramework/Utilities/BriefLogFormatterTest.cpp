#include "Modules/xFramework/Utilities/BriefLogFormatter.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace Utilities {
namespace {

struct LineCase {
    std::uint32_t level;
    std::string function;
    std::string message;
    std::string line;
};

TEST(BriefLogFormatter, WritesTagFunctionAndMessageInColumns) {
    const std::string blanks40(40, ' ');
    const std::string name40(40, 'n');
    const std::string name41(41, 'n');
    const std::vector<LineCase> cases{
        {1, "f", "message", "[OEMERROR]| f" + std::string(39, ' ') + " | message"},
        {2, "f", "message", "[OEMWARNING]| f" + std::string(39, ' ') + " | message"},
        {4, "DynamicTest::ProcessHeaderTestFile", "--------------------->Enter",
         "[OEMINFO] | DynamicTest::ProcessHeaderTestFile       | --------------------->Enter"},
        {8, "f", "message", "[OEMTRACE]| f" + std::string(39, ' ') + " | message"},
        {16, "f", "message", "          | f" + std::string(39, ' ') + " | message"},
        {0, "f", "message", "          | f" + std::string(39, ' ') + " | message"},
        {3, "f", "message", "          | f" + std::string(39, ' ') + " | message"},
        {1, "", "", "[OEMERROR]| " + blanks40 + " | "},
        {1, name40, "message", "[OEMERROR]| " + name40 + " | message"},
        {1, name41, "message", "[OEMERROR]| " + name41 + " | message"},
        {1, name40, "two\nlines", "[OEMERROR]| " + name40 + " | two\nlines"}};
    for (const LineCase& each : cases) {
        SCOPED_TRACE(each.line);
        std::ostringstream out;
        BriefLogFormatter().Format(each.level, "file", each.function.c_str(), each.message, out);
        EXPECT_EQ(out.str(), each.line);
    }
}

} // namespace
} // namespace Utilities
