#include "Tools/SarvexTool/Bench/Files/AppendedLines.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"

#include <gmock/gmock.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace Bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AppendedLinesTest : public testing::Test {
protected:
    /// The lines of a file, in which "wrong" is none.
    std::vector<std::string> Read(const std::string& bytes) {
        std::istringstream stream(bytes);
        AppendedLines lines(stream, "log");
        std::vector<std::string> read;
        const auto parse = [&read](const std::string& line) {
            if (line == "wrong")
                throw std::invalid_argument("this is wrong");
            read.push_back(line);
        };
        while (lines.Read(parse)) {
        }
        end = lines.End();
        return read;
    }

    std::uint64_t end = 0;
};

TEST_F(AppendedLinesTest, WholeLinesAreRead) {
    EXPECT_THAT(Read(""), IsEmpty());
    EXPECT_EQ(end, 0u);
    EXPECT_THAT(Read("a\n\nb\r\n"), ElementsAre("a", "", "b\r"));
    EXPECT_EQ(end, 6u);
}

TEST_F(AppendedLinesTest, ALastLineThatIsTornIsNotRead) {
    EXPECT_THAT(Read("a\nb"), ElementsAre("a"));
    EXPECT_EQ(end, 2u);
    EXPECT_THAT(Read("a\nwrong"), ElementsAre("a"));
    EXPECT_EQ(end, 2u);
    EXPECT_THAT(Read("a\nwrong\n"), ElementsAre("a"));
    EXPECT_EQ(end, 2u);
}

TEST_F(AppendedLinesTest, AnyOtherWrongLineIsTold) {
    for (const std::string bytes : {"a\nwrong\nb\n", "a\nwrong\nwrong\n", "a\nwrong\nb"}) {
        try {
            Read(bytes);
            FAIL() << "nothing was thrown";
        } catch (const BadInput& bad) {
            EXPECT_EQ(bad.File(), "log");
            EXPECT_EQ(bad.Problems().at(0).line, 2u);
            EXPECT_EQ(bad.Problems().at(0).text, "this is wrong");
        }
    }
}

TEST_F(AppendedLinesTest, AFileThatCannotBeReadIsTold) {
    std::istringstream stream("a\n");
    AppendedLines lines(stream, "log");
    stream.setstate(std::ios::badbit);
    EXPECT_THROW(lines.Read([](const std::string&) {}), BadInput);
}

} // namespace
} // namespace Bench
