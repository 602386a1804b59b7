#include "tests/Tools/Vemo/VemoClient/DynamicTest/DynamicTestFixture.h"
#include "tests/Tools/Vemo/VemoClient/DynamicTest/SourceTree.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <vector>

// Runs the examples of docs/test-file.md and docs/results.md.

namespace {

/// A test file of a page, and what the page shows with it, by the labels of the code blocks.
using Example = std::map<std::string, std::string>;

/// Each block "test-file" begins an example; the labelled blocks after it belong to it.
std::vector<Example> ReadExamples(const std::string& page) {
    std::istringstream lines(ReadSourceFile(page));
    std::vector<Example> examples;
    std::string label;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("```", 0) == 0) {
            label = label.empty() ? line.substr(3) : "";
            if (label == "test-file")
                examples.emplace_back();
        } else if (!label.empty()) {
            examples.back()[label] += line + "\n";
        }
    }
    return examples;
}

const std::vector<std::string> pages{"docs/test-file.md", "docs/results.md"};

/// The fixture's base changes the directory; the pages are read before.
class Pages {
protected:
    std::vector<Example> examples = [] {
        std::vector<Example> all;
        for (const std::string& page : pages) {
            const std::vector<Example> some = ReadExamples(page);
            EXPECT_GE(some.size(), 2u) << page;
            all.insert(all.end(), some.begin(), some.end());
        }
        return all;
    }();
};

class PageTest : protected Pages, public DynamicTestFixture {
protected:
    /// What the run showed, by label. answers holds the daemon's answers, an empty line between
    /// those to two lines of the test file.
    Example Show(const std::string& testFile, const std::string& answers) {
        OSAL::Fake::Reset();
        OSAL::Fake::TheWorld().files["/bench/Socket.cfg"].content = "8738";
        AnswerQueries();
        for (std::size_t begin = 0; begin < answers.size();) {
            const std::size_t end = std::min(answers.find("\n\n", begin), answers.size());
            AnswerLine(answers.substr(begin, end + 1 - begin));
            begin = end + 2;
        }
        const ConsoleCapture own;
        Run(testFile);
        Example shown;
        for (const std::string& command : Commands())
            shown["commands"] += command + "\n";
        shown["errors"] = own.Err() + "\n";
        shown["output"] = own.Out().substr(own.Out().find("Commiting"));
        shown["result.csv"] = ReadFile("result.csv");
        shown["result.xml"] = ReadFile("result.xml");
        return shown;
    }
};

TEST_F(PageTest, RunsShowWhatThePagesSay) {
    for (Example& example : examples) {
        SCOPED_TRACE(example["test-file"]);
        Example shown = Show(example["test-file"], example["answers"]);
        // What the daemon says follows on the configuration.
        shown["output"].resize(std::min(shown["output"].size(), example["output"].size()));
        for (const auto& [label, expected] : example) {
            if (label == "test-file" || label == "answers")
                continue;
            EXPECT_EQ(shown[label], expected) << label;
        }
    }
}

TEST_F(PageTest, EachExampleShowsSomethingOfItsRun) {
    std::map<std::string, int> count;
    for (const Example& example : examples) {
        for (const auto& [label, text] : example)
            ++count[label];
    }
    EXPECT_EQ(count, (std::map<std::string, int>{{"answers", 2},
                                                 {"commands", 4},
                                                 {"errors", 1},
                                                 {"output", 1},
                                                 {"result.csv", 1},
                                                 {"result.xml", 2},
                                                 {"test-file", 6}}));
}

} // namespace
