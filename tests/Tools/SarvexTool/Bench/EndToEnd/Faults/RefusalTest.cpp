#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/RunProbe.h"

#include <gtest/gtest.h>

#include <filesystem>

// What would lead the client past the supervision is refused, and then nothing is sent.

namespace Bench {
namespace {

class RefusalTest : public testing::Test {
protected:
    RefusalTest() { daemon.Start(); }

    void ExpectRefusal(const std::vector<std::string>& options) const {
        const EndToEnd::ProcessResult result = probe.Run(daemon.Address(), options);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_NE(result.err, "");
        EXPECT_EQ(daemon.Exchanges(), "");
        EXPECT_FALSE(std::filesystem::exists(probe.Path("run")));
    }

    RunProbe probe;
    RestartableDaemon daemon;
};

TEST_F(RefusalTest, OfArgumentsThatTheClientWouldFollow) {
    for (const std::string name : {"-remoteDaemon", "-open_local_daemon", "-wifi-test-by-file"}) {
        const std::string literal = "{string:" + name + "}";
        const std::vector<std::vector<std::string>> all{
            {name},
            {name, "127.0.0.1"},
            {"-no_automation", name},
            {"-no_automation", name, "127.0.0.1"},
            {literal},
            {literal, "127.0.0.1"},
            {"-no_automation", literal},
            // The client takes one blank from the end of its last argument.
            {name + " "},
            {"-no_automation", name + "\t"},
            {literal + " "},
            {"-no_automation", literal + " "}};
        for (std::vector<std::string> options : all) {
            SCOPED_TRACE(testing::PrintToString(options));
            options.insert(options.begin(), {"--force", "--"});
            ExpectRefusal(options);
        }
    }
}

TEST_F(RefusalTest, OfCellsThatTheClientWouldFollow) {
    for (const std::string cell :
         {"-remoteDaemon", "{string:-remoteDaemon}", "-open_local_daemon", "-wifi-test-by-file"}) {
        for (const std::string& row : {cell + ",40", "40," + cell}) {
            SCOPED_TRACE(row);
            probe.Write("test.csv", "Channel,Bandwidth\n36,20\n" + row + "\n");
            ExpectRefusal({"--force"});
        }
    }
}

TEST_F(RefusalTest, OfNulBytes) {
    const std::string header = "Channel,Bandwidth\n36,20\n";
    for (const std::string& line : {std::string("4\0,20\n", 6), std::string("\0", 1)}) {
        probe.Write("test.csv", header + line);
        ExpectRefusal({"--force"});
    }
}

TEST_F(RefusalTest, OfErrorsWithoutForce) {
    probe.Write("test.csv", "Channel,Bandwidth\n36,20\n,20\n");
    ExpectRefusal({});
    EXPECT_EQ(probe.Run(daemon.Address(), {"--force"}).exitCode, 1);
    EXPECT_EQ(daemon.Exchanges(), "fmcSxSx");
}

TEST_F(RefusalTest, OfWrongOptions) {
    const std::vector<std::vector<std::string>> all{
        {"--answer-timeout", "0"}, {"--answer-timeout", "soon"},
        {"--retries", "-1"},       {"--retries", "1.5"},
        {"--wait", "-1"},          {"--stop-timeout", "0"},
        {"--segment", "0"},        {"--segment", "1000001"},
        {"--progress", "xml"},     {"--limits", "none.csv"},
        {"--client", "none"},      {"--bogus"},
        {"surplus.csv"},           {"--resume", "run"}};
    for (const std::vector<std::string>& options : all) {
        SCOPED_TRACE(testing::PrintToString(options));
        ExpectRefusal(options);
    }
}

} // namespace
} // namespace Bench
