#include "tests/EndToEnd/BenchRun/PowerTests.h"

#include <gmock/gmock.h>

// What run refuses, so that no run gets in the way of another or of itself.

namespace EndToEnd {
namespace {

using testing::HasSubstr;

class RefusedRunTest : public testing::Test {
protected:
    RefusedRunTest() { tests.Write("test.csv", DependentLines(8)); }

    /// A run that has ended at its fifth line, as the client ends of such a return code.
    void EndEarly() const {
        const Simulator daemon({"--fault", "12:return-code=abc"});
        const ProcessResult result = tests.Supervise(tests.NewRun(daemon, "test.csv", "run"));
        ASSERT_EQ(result.exitCode, 3) << result.out << result.err;
        ASSERT_THAT(result.out, HasSubstr("at line 6"));
    }

    void ExpectRefusal(const std::vector<std::string>& arguments, const std::string& words) const {
        const ProcessResult result = tests.Supervise(arguments);
        EXPECT_EQ(result.exitCode, 2) << result.out;
        EXPECT_THAT(result.err, HasSubstr(words));
    }

    PowerTests tests;
    const std::vector<std::string> resume = {"run", "--resume", "run"};
};

TEST_F(RefusedRunTest, ResumingWithAnotherTestFile) {
    EndEarly();
    const Results before = tests.ResultsIn("run");
    const std::string file = tests.Read("test.csv");
    tests.Write("test.csv", file + "5,A,20,36,HE,MCS0\n");
    ExpectRefusal(resume, "has changed since the run began");
    tests.Write("test.csv", file);
    tests.Write("run/test-file.csv", file + "\n");
    ExpectRefusal(resume, "is not the test file that the run began with");
    EXPECT_EQ(tests.ResultsIn("run"), before);
}

TEST_F(RefusedRunTest, ResumingWhereThereIsNoRun) {
    ExpectRefusal(resume, "holds no run: run.json is missing");
    ExpectRefusal({"run", "--resume", "."}, "holds no run: run.json is missing");
}

TEST_F(RefusedRunTest, ResumingACompleteRun) {
    const Simulator daemon;
    ASSERT_EQ(tests.Supervise(tests.NewRun(daemon, "test.csv", "run")).exitCode, 0);
    const Results before = tests.ResultsIn("run");
    ExpectRefusal(resume, "is complete; there is nothing to go on with");
    ExpectRefusal(tests.NewRun(daemon, "test.csv", "run"), "old results are never overwritten");
    EXPECT_EQ(tests.ResultsIn("run"), before);
}

TEST_F(RefusedRunTest, ResumingACompleteRunThatHadNoLines) {
    tests.Write("test.csv", "Band\n");
    const Simulator daemon;
    std::vector<std::string> forced = tests.NewRun(daemon, "test.csv", "run");
    forced.emplace_back("--force");
    const ProcessResult result = tests.Supervise(forced);
    ASSERT_EQ(result.exitCode, 1) << result.err;
    EXPECT_THAT(result.out,
                HasSubstr("Note: The results cannot be judged: there is no measurement"));
    ExpectRefusal(resume, "is complete; there is nothing to go on with");
}

TEST_F(RefusedRunTest, AFolderOrADaemonThatAnotherRunUses) {
    const Results alone = tests.RunAlone("test.csv");
    // The first run waits in its fifth line, until it is killed.
    const Simulator daemon({"--fault", "12:no-answer"});
    const Simulator other;
    std::vector<std::string> patient = tests.NewRun(daemon, "test.csv", "run");
    patient.insert(patient.end(), {"--answer-timeout", "600"});
    const std::unique_ptr<Process> first = tests.Start(patient);
    ASSERT_TRUE(WaitForLines(*first, tests.Path("run/journal.jsonl"), 4)) << first->ErrSoFar();
    const std::string holder = "in use by process " + std::to_string(first->Id()) + ", since ";
    ExpectRefusal(resume, "run: error: the run is " + holder);
    ExpectRefusal(tests.NewRun(daemon, "test.csv", "second"),
                  "127.0.0.1 port " + daemon.Port() + ": error: the daemon is " + holder);
    ExpectRefusal(tests.NewRun(daemon, "test.csv", "second"), "with the run in ");
    EXPECT_FALSE(std::filesystem::exists(tests.Path("second")));
    ExpectRefusal({"check", "test.csv", "--daemon", "127.0.0.1:" + daemon.Port()},
                  "127.0.0.1 port " + daemon.Port() + ": error: the daemon is " + holder);
    const ProcessResult stop = tests.Supervise({"stop", "--daemon", "127.0.0.1:" + daemon.Port()});
    EXPECT_EQ(stop.exitCode, 0) << stop.err;
    EXPECT_THAT(stop.err, HasSubstr("This daemon is in use, and the device may transmit again"));
    EXPECT_THAT(stop.err, HasSubstr(holder));
    EXPECT_EQ(tests.Supervise(tests.NewRun(other, "test.csv", "second")).exitCode, 0);
    EXPECT_FALSE(first->HasEnded());
    first->Kill();
    first->Wait();
    const ProcessResult result = tests.Supervise(resume);
    EXPECT_EQ(result.exitCode, 0) << result.out << result.err;
    for (const char* const run : {"run", "second"})
        EXPECT_EQ(tests.ResultsIn(run).csv, alone.csv);
}

} // namespace
} // namespace EndToEnd
