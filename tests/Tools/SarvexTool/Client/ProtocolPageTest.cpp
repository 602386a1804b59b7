#include "Tools/SarvexTool/Client/Program/EntryPoint.h"

#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Tools/SarvexTool/Client/ConsoleCapture.h"
#include "tests/Tools/SarvexTool/Client/ProgramDirectory.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>
#include <vector>

// Runs the examples of docs/protocol.md.

namespace {

using OSAL::Fake::TheWorld;

std::vector<std::string> PageLines() {
    std::ifstream page(SARVEX_SOURCE_DIR "/docs/protocol.md", std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(page, line);)
        lines.push_back(line);
    return lines;
}

/// The contents of the page's code blocks that have the label, each line with its line end.
std::vector<std::string> Blocks(const std::string& label) {
    std::vector<std::string> blocks;
    bool inside = false;
    for (const std::string& line : PageLines()) {
        if (line == "```" + label) {
            blocks.emplace_back();
            inside = true;
        } else if (line == "```") {
            inside = false;
        } else if (inside) {
            blocks.back() += line + "\n";
        }
    }
    return blocks;
}

/// What is between backticks in a text.
std::vector<std::string> Quoted(const std::string& text) {
    std::vector<std::string> quoted;
    std::istringstream pieces(text);
    bool inside = false;
    for (std::string piece; std::getline(pieces, piece, '`'); inside = !inside) {
        if (inside)
            quoted.push_back(piece);
    }
    return quoted;
}

std::string ToCrLf(const std::string& text) {
    std::string result;
    for (const char character : text)
        result += character == '\n' ? std::string("\r\n") : std::string(1, character);
    return result;
}

class ProtocolPageTest : public testing::Test {
protected:
    ProtocolPageTest() { ProgramDirectory::Reset(); }

    static int Run(const std::vector<std::string>& arguments) {
        std::vector<const char*> pointers{"client"};
        for (const std::string& argument : arguments)
            pointers.push_back(argument.c_str());
        TheWorld().sent.clear();
        return SarvexTool::RunClient(static_cast<int>(pointers.size()), pointers.data());
    }
};

TEST_F(ProtocolPageTest, EveryRowOfArgumentsGivesItsBody) {
    ProgramDirectory::Write("SarvexToolCmds.txt", "-exit 0\n-remote 1\n");
    int rows = 0;
    for (const std::string& line : PageLines()) {
        std::vector<std::string> quoted = Quoted(line);
        if (line.rfind("| `", 0) != 0 || quoted.back().rfind("CLI -1 ", 0) != 0)
            continue;
        SCOPED_TRACE(line);
        ++rows;
        const std::string body = quoted.back();
        quoted.pop_back();
        const ConsoleCapture console;
        Run(quoted);
        EXPECT_THAT(TheWorld().sent, testing::EndsWith("\r\n\r\n" + body));
    }
    EXPECT_GE(rows, 7);
}

TEST_F(ProtocolPageTest, RequestIsSentAsShown) {
    const std::vector<std::string> blocks = Blocks("request");
    ASSERT_EQ(blocks.size(), 1u);
    std::string shown = ToCrLf(blocks.front());
    shown.resize(shown.size() - 2); // The body has no line end.
    const ConsoleCapture console;
    Run({"-wifi-stop"});
    EXPECT_EQ(TheWorld().sent, shown);
}

/// The outputs and the exit code as the page's console blocks show them.
std::string Shown(const std::string& out, const std::string& err, int exitCode) {
    std::string shown;
    for (const auto& [label, text] : {std::pair("out:", out), std::pair("err:", err)}) {
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);)
            shown += std::string(label) + (line.empty() ? "" : " " + line) + "\n";
    }
    return shown + "exit: " + std::to_string(exitCode) + "\n";
}

TEST_F(ProtocolPageTest, AnswersArePrintedAsShown) {
    const std::vector<std::string> answers = Blocks("answer");
    const std::vector<std::string> consoles = Blocks("console");
    ASSERT_GE(answers.size(), 5u);
    ASSERT_EQ(answers.size(), consoles.size());
    for (std::size_t index = 0; index < answers.size(); ++index) {
        SCOPED_TRACE(answers[index]);
        TheWorld().received = {"HTTP/1.1 200 OK\r\n\r\n" + answers[index] + "Done"};
        const ConsoleCapture console;
        const int exitCode = Run({"-x"});
        EXPECT_EQ(Shown(console.Out(), console.Err(), exitCode), consoles[index]);
    }
}

} // namespace
