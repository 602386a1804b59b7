#include "Tools/SarvexTool/Bench/CommandLine.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Support/Files.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string>

namespace Bench {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class CheckTest : public testing::Test {
protected:
    CheckTest() { OSAL::Fake::Reset(); }

    int Run(const std::vector<std::string>& arguments, const std::string& input = "") {
        out.str("");
        err.str("");
        std::istringstream in(input);
        Surroundings surroundings{in, {out}, {err}};
        std::vector<std::string> all{"check"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return RunProgram(all, surroundings);
    }

    std::ostringstream out;
    std::ostringstream err;
    TestSupport::TemporaryDirectory directory;
    const std::string sound = directory.Create("sound.csv", "Chains,Channel\nAB,36\nA,40\n");
};

TEST_F(CheckTest, StandardInputIsNamedDashInMessages) {
    EXPECT_EQ(Run({"-"}), 1);
    EXPECT_EQ(out.str(), "-:1:0: error: the file is empty; its first line names the columns\n"
                         "-: 1 error, no warnings; no configurations, no measurements; a run takes "
                         "about 0 s\n");
}

TEST_F(CheckTest, AFileWithWarningsAloneIsFine) {
    EXPECT_EQ(Run({sound}), 0);
    EXPECT_THAT(out.str(), HasSubstr(sound + ":2:0: warning: no line has set Band when"));
    EXPECT_THAT(out.str(),
                EndsWith(sound + ": no errors, 8 warnings; 2 configurations, 3 measurements; a run "
                                 "takes about 2 s\n"));
    EXPECT_EQ(err.str(), "");
}

TEST_F(CheckTest, OneBadFileDoesNotKeepTheOthersFromBeingChecked) {
    const std::string bad = directory.Create("bad.csv", "Chains\nC\n");
    EXPECT_EQ(Run({sound, bad}), 1);
    EXPECT_EQ(Run({directory.Path("none.csv"), bad}), 2);
    EXPECT_THAT(out.str(), HasSubstr(bad + ":2:1: error: no power is filed for the chains \"C\""));
    EXPECT_EQ(err.str(),
              directory.Path("none.csv") + ": error: cannot be read (No such file or directory)\n");
}

TEST_F(CheckTest, TheTimeOfARunDependsOnDeviceAndExchanges) {
    Run({sound, "--mac-type", "16"});
    EXPECT_THAT(out.str(), EndsWith("about 10 s\n"));
    Run({sound, "--mac-type", "15", "--exchange", "0.5"});
    EXPECT_THAT(out.str(), EndsWith("about 5 s\n"));
}

TEST_F(CheckTest, TheSystemsLimitIsHalfOfTheSmallerOfFilesAndPorts) {
    OSAL::Fake::TheWorld().mostOpenFiles = 3;
    Run({sound});
    EXPECT_THAT(out.str(), HasSubstr(":3:0: warning: this system can carry 1 lines in one run"));
    OSAL::Fake::TheWorld().mostOpenFiles = 4;
    Run({sound});
    EXPECT_EQ(out.str().find("can carry"), std::string::npos);
}

TEST_F(CheckTest, ACorrectedCopyIsWrittenAndItsErrorsCount) {
    const std::string input = directory.Create("in.csv", "Chains;Channel\r\nAB;36\r\n");
    const std::string output = directory.Path("out.csv");
    EXPECT_EQ(Run({input, "--write", output}), 0);
    EXPECT_EQ(TestSupport::ReadBytes(output), "Chains,Channel\nAB,36\n");
    EXPECT_THAT(out.str(), HasSubstr(input + ":1:0: corrected: commas separate the cells now\n"));
    EXPECT_THAT(out.str(), HasSubstr(output + ": no errors"));
    const std::string other = directory.Create("other.csv", "Chains;Channel\nC;36\n");
    EXPECT_EQ(Run({other, "--write", output}), 1);
    EXPECT_THAT(out.str(), HasSubstr(output + ":2:1: error: no power is filed"));
}

TEST_F(CheckTest, ACorrectedCopyOnStandardOutputIsAlone) {
    EXPECT_EQ(Run({"-", "--write", "-"}, "Chains;Channel\r\nAB;36\r\n"), 0);
    EXPECT_EQ(out.str(), "Chains,Channel\nAB,36\n");
    EXPECT_THAT(err.str(), HasSubstr("-:1:0: corrected: commas"));
}

TEST_F(CheckTest, WrongOptionsEndWithTwoBeforeAnythingIsRead) {
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{sound, sound, "--write", directory.Path("out.csv")},
                                               {sound, "--write", sound},
                                               {sound, "--write", directory.Path("./sound.csv")},
                                               {sound, "--mac-type", "x"},
                                               {sound, "--exchange", "-1"},
                                               {sound, "--exchange", "1,5"},
                                               {sound, "--timeout", "0"},
                                               {sound, "--exchange", "86400.5"},
                                               {sound, "--daemon", "::1"},
                                               // As with a variable of a script that is not set.
                                               {sound, "--daemon", ""},
                                               {sound, "--exchange", ""},
                                               {sound, "--mac-type", ""},
                                               {sound, "--timeout", ""},
                                               {sound, "--daemon", "host:99999"}}) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        EXPECT_EQ(Run(arguments), 2);
        EXPECT_EQ(out.str(), "");
        EXPECT_THAT(err.str(), HasSubstr("SarvexToolBench check: "));
    }
    EXPECT_EQ(TestSupport::ReadBytes(sound), "Chains,Channel\nAB,36\nA,40\n");
}

TEST_F(CheckTest, AnEmptyNameIsNoFile) {
    EXPECT_EQ(Run({sound, "--write", ""}), 2);
    EXPECT_EQ(err.str(), "\"\": error: cannot be written (No such file or directory)\n");
    EXPECT_EQ(Run({""}), 2);
    EXPECT_EQ(err.str(), "\"\": error: cannot be read (No such file or directory)\n");
}

TEST_F(CheckTest, AWildcardIsToldThatNobodyHasExpandedIt) {
    for (const std::string name : {"*.csv", "a?.csv"}) {
        EXPECT_EQ(Run({directory.Path(name)}), 2);
        EXPECT_THAT(err.str(), StartsWith(directory.Path(name) + ": error: cannot be read ("));
        EXPECT_THAT(err.str(), EndsWith("); this program expands no wildcards: name each file\n"));
    }
}

TEST_F(CheckTest, ADaemonIsNotAskedAboutAFileWithErrors) {
    // Daemons are locked for all programs of the user, other tests among them.
    const std::string folder = directory.Path();
    const std::string host = "bench" + folder.substr(folder.find_last_of('-') + 1, 19);
    EXPECT_EQ(Run({"-", "--daemon", host + ":1"}, "Chains\nC\n"), 1);
    EXPECT_EQ(err.str(), "-: warning: the daemon is asked when the file has no errors\n");
}

TEST_F(CheckTest, ThePortIsThatOfThePortFileBesideTheProgram) {
    OSAL::Fake::TheWorld().files["/bench/Socket.cfg"] = {"99\n"};
    EXPECT_EQ(Run({sound, "--daemon", "127.0.0.1"}), 2);
    EXPECT_EQ(err.str(),
              "/bench/Socket.cfg: error: holds no port; it begins with \"99\\n\"; name the port "
              "after the host: --daemon HOST:PORT\n");
}

TEST_F(CheckTest, APortFileThatCannotBeReadIsToldWithTheReason) {
    constexpr std::uint32_t noSuchFile = 2;
    constexpr std::uint32_t refused = 13;
    struct Row {
        std::optional<OSAL::Fake::File> file;
        std::uint32_t systemError;
        std::string reason;
    };
    const Row rows[] = {
        {std::nullopt, noSuchFile, "is missing"},
        {std::nullopt, refused, "cannot be opened (the system's error 13)"},
        {OSAL::Fake::File{.content = "", .kind = {.isSymbolicLink = true}, .canBeOpened = false},
         noSuchFile, "is a link that leads to no file"},
        {OSAL::Fake::File{.content = ""}, 0, "is empty"},
        {OSAL::Fake::File{.content = "", .kind = {.isDirectory = true}}, 0, "is a folder"},
        {OSAL::Fake::File{.content = "80\r\n"}, 0, "holds no port; it begins with \"80\\r\\n\""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.reason);
        OSAL::Fake::Reset();
        OSAL::Fake::TheWorld().lastError = row.systemError;
        if (row.file)
            OSAL::Fake::TheWorld().files["/bench/Socket.cfg"] = *row.file;
        EXPECT_EQ(Run({sound, "--daemon", "127.0.0.1"}), 2);
        EXPECT_EQ(err.str(), "/bench/Socket.cfg: error: " + row.reason +
                                 "; name the port after the host: --daemon HOST:PORT\n");
    }
}

TEST_F(CheckTest, APortFileInTheWorkingDirectoryIsNamedWhole) {
    OSAL::Fake::TheWorld().modulePathReadable = false;
    OSAL::Fake::TheWorld().lastError = 2;
    EXPECT_EQ(Run({sound, "--daemon", "127.0.0.1"}), 2);
    const std::u8string file = std::filesystem::absolute("Socket.cfg").u8string();
    EXPECT_EQ(err.str(), std::string(file.begin(), file.end()) +
                             ": error: is missing (it is read there because the client cannot read "
                             "files in the program's own folder, by the characters of its name); "
                             "name the port after the host: --daemon HOST:PORT\n");
}

} // namespace
} // namespace Bench
