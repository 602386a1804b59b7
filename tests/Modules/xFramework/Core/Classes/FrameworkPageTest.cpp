#include "tests/Modules/xFramework/Core/Classes/Examples/Examples.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

// The page docs/framework.md shows, word for word, what is between the marks of the example
// files, and what the examples find out.

namespace {

std::string ReadText(const std::string& path) {
    std::ifstream file(path);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The lines between the marks, without the indentation that they share with the first mark.
std::string MarkedLines(const std::string& path) {
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line) && line.find("// example begins") == std::string::npos)
        continue;
    const std::size_t indentation = line.find('/');
    std::string lines;
    while (std::getline(file, line) && line.find("// example ends") == std::string::npos)
        lines += (line.empty() ? line : line.substr(indentation)) + "\n";
    EXPECT_FALSE(lines.empty()) << path;
    return lines;
}

struct Example {
    const char* name;
    std::string (*run)();
    /// What the page says comes out.
    const char* result;
};

const Example examples[] = {
    {"MakeValues", Examples::MakeValues, "40 44 40 17.5 -wifi-band"},
    {"ConvertSet", Examples::ConvertSet, "149, 36 | 36, 149 | 149"},
    {"ExpandVariable", Examples::ExpandVariable, "Chain A: 17.5 dBm, ok $(unknown)"},
    {"MakeByName", Examples::MakeByName, "2 20 unknown"},
    {"RequestServices", Examples::RequestServices, "12:00 started"},
};

TEST(FrameworkPageTest, ShowsTheExamplesAsTheyAreCompiled) {
    const std::string page = ReadText(FRAMEWORK_PAGE);
    for (const Example& example : examples) {
        SCOPED_TRACE(example.name);
        const std::string lines =
            MarkedLines(std::string(EXAMPLES_FOLDER) + "/" + example.name + ".cpp");
        EXPECT_NE(page.find("```cpp\n" + lines + "```\n"), std::string::npos)
            << "docs/framework.md should hold\n"
            << lines;
    }
    const std::string fence = "```cpp\n";
    std::size_t blocks = 0;
    for (std::size_t hit = page.find(fence); hit != std::string::npos;
         hit = page.find(fence, hit + 1))
        ++blocks;
    EXPECT_EQ(blocks, std::size(examples)) << "a block on the page that no test compiles";
}

TEST(FrameworkPageTest, TellsWhatComesOutOfTheExamples) {
    const std::string page = ReadText(FRAMEWORK_PAGE);
    for (const Example& example : examples) {
        SCOPED_TRACE(example.name);
        EXPECT_EQ(example.run(), example.result);
        EXPECT_NE(page.find(std::string("`") + example.result + "`"), std::string::npos);
    }
}

} // namespace
