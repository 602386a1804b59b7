#include "Tools/SarvexTool/Bench/CommandLine.h"
#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Bench {
namespace {

class CheckTest : public testing::Test {
protected:
    int Run(const std::vector<std::string>& arguments, const std::string& input = "") {
        std::istringstream in(input);
        Surroundings surroundings{in, {out}, {err}};
        return RunProgram(arguments, surroundings);
    }

    std::ostringstream out;
    std::ostringstream err;
    TestSupport::TemporaryDirectory directory;
};

TEST_F(CheckTest, StandardInputIsNamedDashInMessages) {
    EXPECT_EQ(Run({"check", "-"}), 1);
    EXPECT_EQ(out.str(), "-:1:0: error: the file is empty\n");
}

TEST_F(CheckTest, OneBadFileDoesNotKeepTheOthersFromBeingChecked) {
    const std::string empty = directory.Create("empty.csv", "");
    EXPECT_EQ(Run({"check", directory.Path("none.csv"), empty}), 2);
    EXPECT_EQ(out.str(), empty + ":1:0: error: the file is empty\n");
    EXPECT_EQ(err.str(),
              directory.Path("none.csv") + ": error: cannot be read (No such file or directory)\n");
}

} // namespace
} // namespace Bench
