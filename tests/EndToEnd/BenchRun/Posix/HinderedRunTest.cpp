#include "tests/EndToEnd/BenchRun/PowerTests.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

// A run that can write no more stops the transmission, says why, and goes on when it can again.

namespace EndToEnd {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::EndsWith;
using testing::HasSubstr;

constexpr std::size_t lineCount = 100;
constexpr const char* withoutPrivileges = "exec setpriv --bounding-set=-all \"$@\"";

class HinderedRunTest : public testing::Test {
protected:
    HinderedRunTest() {
        tests.Write("test.csv", DependentLines(lineCount));
        expected = tests.RunAlone("test.csv");
    }

    /// Runs a shell script whose "$@" is the rest.
    std::unique_ptr<Process> Script(const std::string& script,
                                    const std::vector<std::string>& rest) const {
        std::vector<std::string> arguments{"-c", script, "sh"};
        arguments.insert(arguments.end(), rest.begin(), rest.end());
        return std::make_unique<Process>("/bin/sh", arguments, tests.Path("."));
    }

    /// A run, in segments of 20 lines, that file permissions bind.
    std::unique_ptr<Process> StartBound(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), BenchPath());
        return Script(::geteuid() == 0 ? withoutPrivileges : "exec \"$@\"", arguments);
    }

    void SetMode(const std::string& path, std::filesystem::perms mode) const {
        std::filesystem::permissions(tests.Path(path), mode);
    }

    void ExpectEndedEarly(const ProcessResult& result, const testing::Matcher<std::string>& why) {
        EXPECT_EQ(result.exitCode, 3) << result.out << result.err;
        EXPECT_THAT(result.out, HasSubstr("The run ended early, after "));
        std::string words = result.out;
        std::replace(words.begin(), words.end(), '\n', ' ');
        EXPECT_THAT(words, why);
        ExpectStopped();
    }

    /// The last command that the daemon had is a stop.
    void ExpectStopped() const {
        std::string log = tests.Read("requests.log");
        ASSERT_FALSE(log.empty());
        log.pop_back();
        EXPECT_THAT(log.substr(log.rfind('\n') + 1), HasSubstr("\"CLI -1 -vemo -wifi-stop\""));
    }

    /// Each journalled line has its row.
    void ExpectWholeJournal(const std::string& directory) const {
        const std::string journal = tests.Read(directory + "/journal.jsonl");
        const std::string rows = tests.Read(directory + "/result.csv");
        const std::size_t lines = CountHits(journal, "\n");
        EXPECT_GT(lines, 0u);
        EXPECT_LT(lines, lineCount);
        EXPECT_GE(CountHits(rows, "\n"), lines + 1);
        const std::size_t end = std::stoul(journal.substr(journal.rfind("\"csvEnd\":") + 9));
        EXPECT_EQ(rows.substr(0, end), expected.csv.substr(0, end));
    }

    void ExpectCompleteAfterResuming(const std::string& directory) const {
        const ProcessResult result = tests.Supervise({"run", "--resume", directory});
        EXPECT_EQ(result.exitCode, 0) << result.out << result.err;
        EXPECT_EQ(tests.ResultsIn(directory), expected);
    }

    std::size_t ClientKibibytes() const {
        return std::filesystem::file_size(tests.Path("SarvexToolClientWithoutPauses")) / 1024;
    }

    /// A run in the folder "run" of a disk of that size; it ends early. It is kept in the folder
    /// "early", the daemon's log until then in "early.log". Then there is room, and it is resumed.
    void RunOnSmallDisk(std::size_t kibibytes) {
        std::filesystem::create_directory(tests.Path("disk"));
        if (Script("unshare -rm mount -t tmpfs none disk", {})->Wait().exitCode != 0)
            GTEST_SKIP() << "no file system can be mounted here";
        std::vector<std::string> arguments = tests.NewRun(daemon, "test.csv", "disk/run");
        arguments.insert(arguments.begin(), BenchPath());
        arguments.insert(arguments.begin(), std::to_string(kibibytes));
        const ProcessResult result =
            Script("exec unshare -rm sh -c '"
                   "mount -t tmpfs -o size=$1k none disk || exit 99; shift;"
                   "\"$@\"; echo $? >ended; cp -r disk/run early; cp requests.log early.log;"
                   "mount -o remount,size=100% disk || exit 98;"
                   "\"$1\" run --resume disk/run >resumed; code=$?; cp -r disk/run late; exit "
                   "$code' sh \"$@\"",
                   arguments)
                ->Wait();
        EXPECT_EQ(result.exitCode, 0) << result.out << result.err;
        EXPECT_EQ(tests.Read("ended"), "3\n");
        EXPECT_EQ(tests.ResultsIn("late"), expected);
        said = result.out;
        std::replace(said.begin(), said.end(), '\n', ' ');
    }

    PowerTests tests;
    Results expected;
    std::string said;
    const Simulator daemon{{"--latency", "5", "--request-log", tests.Path("requests.log")}};
};

TEST_F(HinderedRunTest, FullDisk) {
    // Besides the client's copy there is room for the first lines.
    RunOnSmallDisk(ClientKibibytes() + 128);
    if (IsSkipped())
        return;
    // Whoever comes first: the supervisor, or the client with its row.
    EXPECT_THAT(said, AnyOf(HasSubstr("No space left on device"),
                            HasSubstr("the client has written no row for line ")));
    EXPECT_THAT(tests.Read("early.log"), HasSubstr("-wifi-start"));
    const std::string log = tests.Read("early.log");
    EXPECT_GT(log.rfind("-wifi-stop"), log.rfind("-wifi-start"));
    ExpectWholeJournal("early");
    EXPECT_EQ(tests.Read("early/result.xml"), "");
}

TEST_F(HinderedRunTest, DiskWithoutRoomForTheClient) {
    RunOnSmallDisk(ClientKibibytes() / 2);
    if (IsSkipped())
        return;
    EXPECT_THAT(said, AllOf(HasSubstr("The run ended early, after 0 of 100 lines: cannot write "),
                            HasSubstr(": No space left on device."),
                            HasSubstr(" SarvexToolBench run --resume disk/run ")));
    EXPECT_EQ(tests.Read("early.log"), "");
    EXPECT_FALSE(std::filesystem::exists(tests.Path("early/client")));
}

TEST_F(HinderedRunTest, FilesThatMayGrowNoMore) {
    const auto run = tests.Start(tests.NewRun(daemon, "test.csv", "run"));
    ASSERT_TRUE(WaitForLines(*run, tests.Path("run/journal.jsonl"), 6)) << run->ErrSoFar();
    // Room for what is said on the standard output.
    const rlimit limit{4096, 4096};
    ASSERT_EQ(::prlimit(static_cast<pid_t>(run->Id()), RLIMIT_FSIZE, &limit, nullptr), 0);
    ExpectEndedEarly(run->Wait(), HasSubstr("File too large"));
    ExpectWholeJournal("run");
    ExpectCompleteAfterResuming("run");
}

TEST_F(HinderedRunTest, OutputThatNobodyReadsKeepsTheExitCode) {
    const Simulator early({"--fault", "12:return-code=abc"});
    const ProcessResult result =
        Process(BenchPath(), tests.NewRun(early, "test.csv", "run"), tests.Path("."),
                {.output = Process::Output::BrokenPipe, .inputFile = "", .areArgumentsUtf8 = false})
            .Wait();
    EXPECT_EQ(result.exitCode, 3) << result.err;
    EXPECT_THAT(result.err, HasSubstr("\nThe run ended early, after "));
    EXPECT_THAT(result.err, EndsWith("\n  SarvexToolBench run --resume run\n"
                                     "The daemon has confirmed the last stop.\n"
                                     "-: error: cannot be written\n"));
}

TEST_F(HinderedRunTest, FolderThatBecomesReadOnly) {
    const auto run = StartBound(tests.NewRun(daemon, "test.csv", "run", {"--segment", "20"}));
    ASSERT_TRUE(WaitForLines(*run, tests.Path("run/journal.jsonl"), 3)) << run->ErrSoFar();
    using std::filesystem::perms;
    for (const char* const folder : {"run/client", "run"})
        SetMode(folder, perms::owner_read | perms::owner_exec);
    ExpectEndedEarly(run->Wait(), HasSubstr("Permission denied"));
    ExpectWholeJournal("run");
    const ProcessResult refused = StartBound({"run", "--resume", "run"})->Wait();
    EXPECT_EQ(refused.exitCode, 2) << refused.out;
    EXPECT_THAT(refused.err, HasSubstr("Permission denied"));
    for (const char* const folder : {"run", "run/client"})
        SetMode(folder, perms::owner_all);
    ExpectCompleteAfterResuming("run");
}

TEST_F(HinderedRunTest, FolderThatIsReadOnlyFromTheStart) {
    std::filesystem::create_directory(tests.Path("folder"));
    SetMode("folder", std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    const ProcessResult result = StartBound(tests.NewRun(daemon, "test.csv", "folder/run"))->Wait();
    SetMode("folder", std::filesystem::perms::owner_all);
    EXPECT_EQ(result.exitCode, 2) << result.out;
    EXPECT_THAT(result.err, HasSubstr("Permission denied"));
    EXPECT_EQ(tests.Read("requests.log"), "");
}

TEST_F(HinderedRunTest, FolderThatIsMovedAway) {
    const auto run = tests.Start(tests.NewRun(daemon, "test.csv", "run"));
    ASSERT_TRUE(WaitForLines(*run, tests.Path("run/journal.jsonl"), 3)) << run->ErrSoFar();
    std::filesystem::rename(tests.Path("run"), tests.Path("elsewhere"));
    ExpectEndedEarly(run->Wait(), HasSubstr("the folder of the run is not there any more"));
    EXPECT_FALSE(std::filesystem::exists(tests.Path("run")));
    ExpectWholeJournal("elsewhere");
    ExpectCompleteAfterResuming("elsewhere");
}

TEST_F(HinderedRunTest, FolderThatIsRemoved) {
    const auto run = tests.Start(tests.NewRun(daemon, "test.csv", "run"));
    ASSERT_TRUE(WaitForLines(*run, tests.Path("run/journal.jsonl"), 3)) << run->ErrSoFar();
    std::filesystem::remove_all(tests.Path("run"));
    ExpectEndedEarly(run->Wait(), HasSubstr("the folder of the run is not there any more"));
}

} // namespace
} // namespace EndToEnd
