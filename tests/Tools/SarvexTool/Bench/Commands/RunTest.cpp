#include "tests/Tools/SarvexTool/Bench/Commands/CommandFixture.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace Bench {
namespace {

using testing::HasSubstr;

/// Of a store on a server, whose name has a password.
#ifdef _WIN32
constexpr const char* serverComplaint = "keeps its history in files only";
#else
constexpr const char* serverComplaint =
    "--store has a password, which the run's run.json would tell";
#endif

class RunTest : public CommandFixture {
protected:
    struct Case {
        std::vector<std::string> arguments;
        const char* complaint;
    };

    void ExpectComplaints(const std::vector<Case>& cases) {
        for (const Case& test : cases) {
            SCOPED_TRACE(test.complaint);
            EXPECT_EQ(Run(test.arguments), 2);
            EXPECT_THAT(err.str(), HasSubstr(test.complaint));
        }
        EXPECT_FALSE(std::filesystem::exists("runs"));
        EXPECT_FALSE(std::filesystem::exists(folder));
    }

    /// A run that would begin but for what a test adds.
    std::vector<std::string> With(const std::vector<std::string>& more) const {
        std::vector<std::string> arguments{"run",      file,       "--out",    folder,
                                           "--daemon", "[::1]:81", "--client", client};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }

    std::string file = directory.Create("plan.csv", "Band,Chains\n5,A\n");
    std::string client = directory.Create("client", "");
    std::string folder = directory.Path("run");
};

TEST_F(RunTest, WrongUsageIsToldAndNothingIsMade) {
    ExpectComplaints({
        {{"run"}, "either TEST_FILE or --resume DIR is needed"},
        {{"run", file, "--resume", folder}, "cannot be given both"},
        {{"run", file, "other.csv"}, "\"other.csv\" is one too many"},
        {{"run", "-"}, "takes no file from standard input"},
        {With({"--limits", "-"}), "takes no file from standard input"},
        {With({"--progress", "xml"}), "--progress xml is neither text nor json"},
        {With({"--segment", "0"}), "--segment 0 is no number from 1 to "},
        {With({"--segment", "99999999"}), "--segment 99999999 is no number"},
        {With({"--retries", "-1"}), "--retries -1 is no number from 0 to 1000"},
        {With({"--answer-timeout", "0"}), "--answer-timeout is too short"},
        {With({"--wait", "x"}), "--wait x is no time in seconds"},
        {With({"--stop-timeout", "1e3"}), "--stop-timeout 1e3 is no time"},
        {With({"--bench", ""}), "--bench needs a name"},
        {With({"--device", ""}), "--device needs a name"},
        {With({"--firmware", ""}), "--firmware needs a text"},
        {With({"--note", ""}), "--note needs a text"},
        {With({"--store", "x.db"}), "--store needs --keep"},
        {With({"--keep", "--store", "postgresql://u:p@h/d"}), serverComplaint},
        {With({"--keep", "--store", folder}), "run would replace the input"},
        {With({"--keep", "--store", folder + "/run.json"}), "run.json would replace the input"},
        {{"run", "--resume", folder, "--keep"}, "leave out --keep"},
        {With({"--attempt", "0"}), "--attempt 0 is no number from 1 to 1000000"},
        {{"run", "--resume", folder, "--attempt", "2"}, "leave out --attempt"},
        {{"run", file, "--daemon", "a:b"}, "--daemon a:b is no address"},
        {With({"--limits", directory.Path("none.csv")}), "none.csv: error: cannot be read"},
        {{"run", file, "--daemon", "a:1", "--client", directory.Path("none")},
         "none: error: is no file; the client is looked for beside this program, or where --client says"},
        {{"run", directory.Path("none.csv"), "--daemon", "a:1", "--client", client},
         "none.csv: error: cannot be read"},
        {{"run", directory.Path()},
         ": error: is no ordinary file; a run reads it more than once, so save it in one"},
        {With({"--limits", directory.Path()}), ": error: is no ordinary file"},
        {{"run", "--resume", ""}, "--resume needs the name of a folder"},
        {{"run", "--resume", folder, "--force"}, "leave out --force"},
        {{"run", "--resume", folder, "--", "-wifi-stop"}, "takes the client's own first command"},
        {{"run", "--resume", directory.Path("none")}, "error: "},
    });
}

TEST_F(RunTest, ArgumentsThatWouldGoPastTheRelayAreRefused) {
    ExpectComplaints({
        {With({"--", "-remoteDaemon", "10.0.0.7"}), "the argument -remoteDaemon would lead"},
        {With({"--", "-wifi-stop", "-open_local_daemon"}), "the argument -open_local_daemon"},
        {With({"--force", "--", "-wifi-test-by-file"}), "the argument -wifi-test-by-file"},
        {With({"--", "-connect", "-remoteDaemon "}), "the argument -remoteDaemon would lead"},
    });
}

TEST_F(RunTest, FileThatIsNotFitIsNotRun) {
    directory.Create("plan.csv", "Band,Chains\n5,C\n");
    ExpectComplaints({{With({}), "Nothing was run: correct the file"}});
    directory.Create("plan.csv", "Band,Chains\n5,-remoteDaemon\n");
    ExpectComplaints({{With({"--force"}), "plan.csv:2:0: error: a cell -remoteDaemon would lead"}});
    directory.Create("plan.csv", std::string("Band,Chains\n5,A\n6,\0\n", 20));
    ExpectComplaints({{With({"--force"}), "plan.csv:3:0: error: a NUL byte cannot be sent"}});
}

TEST_F(RunTest, StopNeedsAnAddress) {
    EXPECT_EQ(Run({"stop", "--daemon", ""}), 2);
    EXPECT_EQ(Run({"stop", "--daemon", "a:1", "--stop-timeout", "x"}), 2);
    EXPECT_EQ(Run({"stop", "--daemon", "a:1", "--stop-timeout", "0.0009"}), 2);
}

} // namespace
} // namespace Bench
