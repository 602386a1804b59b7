#include "Tools/SarvexTool/Bench/CommandLine.h"

#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Support/Files.h"
#include "tests/Tools/SarvexTool/Client/ConsoleCapture.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <sstream>

namespace Bench {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class CommandLineTest : public testing::Test {
protected:
    CommandLineTest() { OSAL::Fake::Reset(); }

    int Run(const std::vector<std::string>& arguments) {
        out.str("");
        err.str("");
        Surroundings surroundings{in, {out}, {err}};
        return RunProgram(arguments, surroundings);
    }

    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;
    TestSupport::TemporaryDirectory directory;
};

TEST_F(CommandLineTest, TheHelpListsTheSubcommands) {
    EXPECT_EQ(Run({"--help"}), 0);
    const std::string help = out.str();
    EXPECT_THAT(help, HasSubstr("Usage: SarvexToolBench [OPTIONS] SUBCOMMAND"));
    EXPECT_THAT(help, HasSubstr("\n  check "));
    EXPECT_EQ(err.str(), "");
    EXPECT_EQ(Run({"help"}), 0);
    EXPECT_EQ(out.str(), help);
}

TEST_F(CommandLineTest, TheHelpOfASubcommandIsAskedForInTwoWays) {
    EXPECT_EQ(Run({"check", "--help"}), 0);
    const std::string help = out.str();
    EXPECT_THAT(help, HasSubstr("Usage: SarvexToolBench check [OPTIONS] FILE..."));
    EXPECT_EQ(Run({"help", "check"}), 0);
    EXPECT_EQ(out.str(), help);
}

TEST_F(CommandLineTest, TheHelpFitsAConsole) {
    for (const char* const name :
         {"help", "check", "split", "merge", "judge", "report", "compare"}) {
        Run({name, "--help"});
        std::istringstream help(out.str());
        for (std::string line; std::getline(help, line);)
            EXPECT_LT(line.size(), 80) << line;
    }
    EXPECT_EQ(Run({"check", "--help"}), 0);
    EXPECT_THAT(
        out.str(),
        HasSubstr(
            "  --daemon HOST[:PORT]        Try the settings on a daemon, without calibrating\n"
            "                              or starting anything; its settings are changed.\n"));
}

TEST_F(CommandLineTest, TheHelpOfASubcommandTellsItsExitCodesAndWhatItNeeds) {
    for (const auto& [name, needed] :
         {std::pair("check", "FILE ... REQUIRED"), std::pair("judge", "--limits FILE REQUIRED"),
          std::pair("report", "--output FILE.html REQUIRED"),
          std::pair("compare", "OLD REQUIRED")}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(Run({name, "--help"}), 0);
        EXPECT_THAT(out.str(), HasSubstr(needed));
        EXPECT_THAT(out.str(), HasSubstr("\nExit code: 0 "));
    }
}

TEST_F(CommandLineTest, TheVersionIsThatOfTheProject) {
    EXPECT_EQ(Run({"--version"}), 0);
    EXPECT_EQ(out.str(), "SarvexToolBench " SARVEX_BENCH_VERSION "\n");
}

TEST_F(CommandLineTest, ASlashAndAQuestionMarkAskForHelp) {
    for (const std::vector<std::string>& subcommand :
         std::vector<std::vector<std::string>>{{}, {"check"}, {"run"}}) {
        std::vector<std::string> arguments = subcommand;
        arguments.emplace_back("--help");
        EXPECT_EQ(Run(arguments), 0);
        const std::string help = out.str();
        arguments.back() = "/?";
        EXPECT_EQ(Run(arguments), 0);
        EXPECT_EQ(out.str(), help);
        EXPECT_EQ(err.str(), "");
    }
    EXPECT_EQ(Run({"check", "/?", "/?"}), 2) << "these would be files";
}

struct WrongUsageCase {
    std::vector<std::string> arguments;
    std::string message;
};

TEST_F(CommandLineTest, EveryWrongUsageEndsWithTwoAndSaysWhereHelpIs) {
    const std::string file = directory.Create("a.csv", "Band\n5\n");
    const std::string end = " --help for the options.\n";
    for (
        const auto& [arguments, message] : std::vector<WrongUsageCase>{
            {{}, "SarvexToolBench: A subcommand is required\nRun SarvexToolBench" + end},
            {{"chekc", file},
             "SarvexToolBench: there is no subcommand \"chekc\"; did you mean \"check\"?\n"},
            {{"help", "reprot"},
             "SarvexToolBench: there is no subcommand \"reprot\"; did you mean \"report\"?\n"},
            {{"--verison"},
             "SarvexToolBench: there is no option \"--verison\"; did you mean \"--version\"?\n"},
            {{"check"}, "SarvexToolBench check: FILE is required\nRun SarvexToolBench check" + end},
            {{"check", file, "--bad=1"},
             "SarvexToolBench check: there is no option \"--bad\"\nRun SarvexToolBench check" +
                 end},
            {{"judge", file, "--limit", file},
             "SarvexToolBench judge: there is no option \"--limit\"; did you mean \"--limits\"?\n"},
            {{"--limits", file, "judge", file},
             "SarvexToolBench judge: \"--limits\" is in front of the subcommand; write it after "
             "it\n"},
            {{"judge", "Day", "1", "--limits", file},
             "SarvexToolBench judge: the argument \"1\" is one too many; put a name that holds "
             "blanks in quotes\n"},
            {{"judge", file, "--limits", file, "--limits", file},
             "SarvexToolBench judge: --limits is given more than once\n"},
            {{"judge", file, "--limits"}, "SarvexToolBench judge: --limits: "},
            {{"check", "-", "-"},
             "SarvexToolBench check: standard input (-) can be read once only\n"
             "Run SarvexToolBench check" +
                 end},
            {{"help", "\x1B[2J"},
             "SarvexToolBench: there is no subcommand \"\\x1B[2J\"\nRun SarvexToolBench" + end}}) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        EXPECT_EQ(Run(arguments), 2);
        EXPECT_EQ(out.str(), "");
        EXPECT_THAT(err.str(), StartsWith(message));
        EXPECT_THAT(err.str(), HasSubstr("Run SarvexToolBench"));
    }
}

TEST_F(CommandLineTest, AFileMayBeNamedLikeASubcommandOrBeginWithASlash) {
    Run({"check", "help", "/none/a.csv"});
    EXPECT_THAT(err.str(), HasSubstr("help: error: cannot be read"));
    EXPECT_THAT(err.str(), HasSubstr("/none/a.csv: error: cannot be read"));
}

TEST_F(CommandLineTest, AnUnreadableFileEndsWithTwo) {
    EXPECT_EQ(Run({"check", directory.Path("none.csv")}), 2);
    EXPECT_EQ(err.str(),
              directory.Path("none.csv") + ": error: cannot be read (No such file or directory)\n");
}

TEST_F(CommandLineTest, AnEmptyNameIsShownAsOne) {
    EXPECT_EQ(Run({"check", ""}), 2);
    EXPECT_EQ(err.str(), "\"\": error: cannot be read (No such file or directory)\n");
}

TEST_F(CommandLineTest, AStandardOutputThatTakesNothingEndsWithTwo) {
    out.setstate(std::ios::badbit);
    Surroundings surroundings{in, {out}, {err}};
    EXPECT_EQ(RunProgram({"--help"}, surroundings), 2);
    EXPECT_EQ(err.str(), "-: error: cannot be written\n");
}

TEST_F(CommandLineTest, WhatIsDoneStandsThoughStandardOutputTakesNothing) {
    TestSupport::WriteBytes(
        directory.Path("plan.csv"),
        "Band,Chains,Bandwidth,Channel,Bandwidth Mode,Rate,Mode,Resource Unit,Specific Resource "
        "unit,Large RU Size\n2.4,A,20,1,legacy,11,SISO,242,0,none\n");
    out.setstate(std::ios::badbit);
    Surroundings surroundings{in, {out}, {err}};
    EXPECT_EQ(RunProgram({"split", directory.Path("plan.csv"), "--lines", "1", "-o",
                          directory.Path("chunks")},
                         surroundings),
              0);
    EXPECT_EQ(err.str(), "-: error: cannot be written\n");
    // What this one prints is all that it does.
    EXPECT_EQ(RunProgram({"check", directory.Path("plan.csv")}, surroundings), 2);
}

class ColoursTest : public CommandLineTest {
protected:
    ~ColoursTest() override { SetNoColor(""); }

    /// The environment keeps the text itself.
    static void SetNoColor(const std::string& value) {
        static std::string variable;
        variable = "NO_COLOR=" + value;
        ::putenv(variable.data());
    }

    std::string Printed() const {
        const ConsoleCapture console;
        RunProgram({"check", directory.Path("none.csv")});
        return console.Err();
    }
};

TEST_F(ColoursTest, AreForATerminalOnly) {
    SetNoColor("");
    EXPECT_EQ(Printed().find('\x1B'), std::string::npos);
    OSAL::Fake::TheWorld().terminals = {OSAL::StandardStream::Output};
    EXPECT_EQ(Printed().find('\x1B'), std::string::npos);
    OSAL::Fake::TheWorld().terminals = {OSAL::StandardStream::Error};
    EXPECT_NE(Printed().find('\x1B'), std::string::npos);
}

TEST_F(ColoursTest, AreNeverThereWhenTheUserWantsNone) {
    OSAL::Fake::TheWorld().terminals = {OSAL::StandardStream::Error};
    SetNoColor("1");
    EXPECT_EQ(Printed().find('\x1B'), std::string::npos);
}

} // namespace
} // namespace Bench
