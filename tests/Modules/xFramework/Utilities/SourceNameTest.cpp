#include "Modules/xFramework/Utilities/SourceName.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Utilities {
namespace {

struct NameCase {
    std::string path;
    std::string name;
};

TEST(SourceName, IsThePathFromTheTreeOfSourcesWithoutExtension) {
    const std::vector<NameCase> cases{
        {"/home/bench.new/client/src/Tools/Vemo/DynamicTest.cpp", "src/Tools/Vemo/DynamicTest"},
        {"src/Tools/Vemo/DynamicTest.cpp", "src/Tools/Vemo/DynamicTest"},
        {"../../src/main.cpp", "src/main"},
        {"/usr/src/client/src/main.cpp", "src/main"},
        {"/home/mysrc/client/main.cpp", "/home/mysrc/client/main"},
        {"/home/bench.new/main", "/home/bench.new/main"},
        {"src/Tools/Makefile", "src/Tools/Makefile"},
        {"main.cpp", "main"},
        {"", ""}};
    for (const NameCase& each : cases) {
        SCOPED_TRACE(each.path);
        EXPECT_EQ(SourceName(each.path), each.name);
    }
}

} // namespace
} // namespace Utilities
