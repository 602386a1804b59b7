#include "Tools/SarvexTool/Bench/Output/TextTable.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Bench {
namespace {

TEST(TextTableTest, ColumnsAreAsWideAsTheirWidestCell) {
    TextTable table({"Band", "n"}, 1);
    table.Add({"5", "1000"});
    table.Add({"twenty", ""});
    std::ostringstream stream;
    table.Print(stream);
    EXPECT_EQ(stream.str(), "Band       n\n"
                            "5       1000\n"
                            "twenty\n");
}

TEST(TextTableTest, CharactersCountAndNotTheirBytes) {
    TextTable table({"Band", "n"}, 1);
    table.Add({"\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4", "1"});
    table.Add({"\x1B", "2"});
    std::ostringstream stream;
    table.Print(stream);
    EXPECT_EQ(stream.str(), "Band   n\n"
                            "\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4  1\n"
                            "\\x1B   2\n");
}

} // namespace
} // namespace Bench
