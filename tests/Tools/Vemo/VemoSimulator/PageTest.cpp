#include "Tools/Vemo/VemoSimulator/Device.h"
#include "Tools/Vemo/VemoSimulator/FaultRule.h"
#include "Tools/Vemo/VemoSimulator/Options.h"

#include "tests/EndToEnd/Support/ScriptedPeer.h"
#include "tests/Tools/Vemo/VemoSimulator/Support/Peer.h"
#include "tests/Tools/Vemo/VemoSimulator/Support/RunningSimulator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <sstream>

namespace VemoSimulator {

using testing::Contains;
using testing::HasSubstr;

namespace {

using Lines = std::vector<std::string>;

Lines SplitLines(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::string JoinLines(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\n";
    return text;
}

/// Splits a command of the page at blanks, except in double quotes, which are dropped; the
/// program's name is dropped too.
Lines ArgumentsOf(const std::string& command) {
    Lines words(1);
    bool isQuoted = false;
    for (const char character : command) {
        if (character == '"')
            isQuoted = !isQuoted;
        else if (character == ' ' && !isQuoted)
            words.emplace_back();
        else
            words.back() += character;
    }
    words.erase(words.begin());
    return words;
}

const Lines& Page() {
    static const Lines lines = SplitLines(TestSupport::ReadBytes(VEMO_PAGE));
    return lines;
}

/// The insides of the page's code blocks of one kind.
std::vector<Lines> Blocks(const std::string& kind) {
    std::vector<Lines> blocks;
    bool isInside = false;
    for (const std::string& line : Page()) {
        if (line == "```" + kind)
            blocks.emplace_back();
        else if (isInside && line != "```")
            blocks.back().push_back(line);
        isInside = line == "```" + kind || (isInside && line != "```");
    }
    return blocks;
}

/// The commands in the first column of the page's tables.
Lines ExampleCommands() {
    Lines commands;
    const std::regex pattern("^\\| `(vemo [^`]*)` \\|");
    std::smatch match;
    for (const std::string& line : Page()) {
        if (std::regex_search(line, match, pattern))
            commands.push_back(match[1]);
    }
    return commands;
}

/// The recording that the page shows, under the name that it goes by there.
RunningSimulator::File PageRecording() {
    return {"exchanges.jsonl", JoinLines(Blocks("jsonl").front())};
}

/// A folder with the program, a port file, a file for a raw answer and a recording.
class Stage {
public:
    explicit Stage(const std::string& port) {
        std::filesystem::copy_file(SimulatorPath(), Program());
        TestSupport::WriteBytes(m_directory.Path("Socket.cfg"), port);
        TestSupport::WriteBytes(m_directory.Path("answer.bin"), "raw");
        TestSupport::WriteBytes(m_directory.Path(PageRecording().first), PageRecording().second);
    }

    std::string Program() const {
        return m_directory.Path(EndToEnd::ExecutableName("SimulatedDaemon"));
    }
    std::string Directory() const { return m_directory.Path(); }

private:
    TestSupport::TemporaryDirectory m_directory;
};

/// Runs one session of the page; its first line starts the program, lines after "> " are commands.
void RunSession(const Lines& session) {
    const RunningSimulator simulator(ArgumentsOf(session.front().substr(2)), {PageRecording()});
    for (auto line = session.begin() + 1; line != session.end();) {
        SCOPED_TRACE(*line);
        const std::string command = line->substr(2);
        const auto end = std::find_if(line + 1, session.end(), [](const std::string& later) {
            return later.starts_with("> ");
        });
        EXPECT_EQ(Exchange(simulator.Port(), command) + "\n", JoinLines({line + 1, end}));
        line = end;
    }
}

} // namespace

TEST(PageTest, ThePageShowsTheHelpText) {
    ASSERT_EQ(Blocks("help").size(), 1U);
    EXPECT_EQ(JoinLines(Blocks("help").front()),
              std::get<EarlyEnd>(ParseOptions({"--help"})).output);
}

TEST(PageTest, EveryExampleCommandRuns) {
    const Stage stage(EndToEnd::UnusedPort());
    for (const std::string& command : ExampleCommands()) {
        SCOPED_TRACE(command);
        const EndToEnd::Process process(stage.Program(), ArgumentsOf(command), stage.Directory());
        const std::string line = WaitForLine(process);
        if (command == "vemo --help")
            EXPECT_THAT(line, HasSubstr("Replaces the daemon"));
        else if (command == "vemo --version")
            EXPECT_TRUE(std::regex_match(line, std::regex("vemo [0-9.]+"))) << line;
        else
            EXPECT_THAT(line, HasSubstr("vemo listens on "));
    }
}

TEST(PageTest, EveryOptionHasAnExample) {
    const std::string examples = JoinLines(ExampleCommands());
    const std::string help = std::get<EarlyEnd>(ParseOptions({"--help"})).output;
    const std::regex option("\n  (--[a-z-]+)");
    int count = 0;
    for (std::sregex_iterator match(help.begin(), help.end(), option), end; match != end; ++match) {
        EXPECT_THAT(examples, HasSubstr((*match)[1].str()));
        ++count;
    }
    EXPECT_EQ(count, 14);
}

TEST(PageTest, EveryFaultHasAnExample) {
    const std::string examples = JoinLines(ExampleCommands());
    for (const std::string& name : FaultNames())
        EXPECT_TRUE(std::regex_search(examples, std::regex(":" + name + "[=\"\n]"))) << name;
}

TEST(PageTest, EverySettingHasARow) {
    for (const SettingRow& row : SettingTable()) {
        EXPECT_THAT(Page(), Contains("| `" + std::string(row.option) + "` | " +
                                     DescribeValues(row.setting) + " | " +
                                     std::string(row.initialValue) + " |"));
    }
}

TEST(PageTest, EveryOptionOfTheDeviceIsNamed) {
    const std::string page = JoinLines(Page());
    for (const std::string& line : DescribeDeviceOptions())
        EXPECT_TRUE(std::regex_search(
            page, std::regex("`\\" + line.substr(0, line.find(' ')) + "`", std::regex::icase)))
            << line;
}

TEST(PageTest, EverySessionGoesAsShown) {
    int count = 0;
    for (const Lines& session : Blocks("session")) {
        if (session.front() == "$ vemo")
            continue;
        SCOPED_TRACE(session.front());
        RunSession(session);
        ++count;
    }
    EXPECT_EQ(count, 4);
}

TEST(PageTest, WithoutOptionsThePortFileCounts) {
    const std::string port = EndToEnd::UnusedPort();
    const Stage stage(port);
    const EndToEnd::Process process(stage.Program(), {}, stage.Directory());
    const Lines session = Blocks("session").front();
    ASSERT_EQ(session.front(), "$ vemo");
    EXPECT_EQ(std::regex_replace(WaitForLine(process), std::regex(":" + port), ":8738"),
              session.back());
}

} // namespace VemoSimulator
