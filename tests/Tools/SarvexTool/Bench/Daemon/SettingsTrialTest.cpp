#include "Tools/SarvexTool/Bench/Daemon/SettingsTrial.h"

#include <gmock/gmock.h>

#include <functional>

namespace Bench {
namespace {

using testing::ElementsAre;

/// Records what it is asked, and refuses what a function says.
class FakeDaemon : public IDaemon {
public:
    using Refuses = std::function<bool(const std::string& command)>;
    explicit FakeDaemon(Refuses refuses) : m_refuses(std::move(refuses)) {}

    DaemonAnswer Ask(const std::vector<std::string>& arguments) override {
        std::string command;
        for (const std::string& argument : arguments)
            command.append(command.empty() ? "" : " ").append(argument);
        commands.push_back(command);
        return m_refuses(command) ? DaemonAnswer{true, "not this"} : DaemonAnswer{};
    }

    std::vector<std::string> commands;

private:
    Refuses m_refuses;
};

class SettingsTrialTest : public testing::Test {
protected:
    /// The errors after the settings of a file were tried.
    std::vector<std::string> Try(std::string_view bytes, IDaemon& daemon) {
        TextPool pool;
        CheckedTestFile file = CheckTestFile(bytes, pool, 1000);
        TrySettings(file, daemon);
        std::vector<std::string> texts;
        for (const Problem& problem : file.problems.InOrder()) {
            if (problem.severity == Severity::Error)
                texts.push_back(std::to_string(problem.line) + ":" +
                                std::to_string(problem.column) + " " + problem.text);
        }
        return texts;
    }
};

TEST_F(SettingsTrialTest, EachDistinctConfigurationIsSentOnceWithAllThatItCarriesOver) {
    FakeDaemon daemon([](const std::string&) { return false; });
    EXPECT_TRUE(Try("Channel,Band\n-,-\n36,5\n40,-\n36,5\n", daemon).empty());
    EXPECT_THAT(daemon.commands,
                ElementsAre("-wifi-band 5 -wifi-channel 36", "-wifi-band 5 -wifi-channel 40"));
}

TEST_F(SettingsTrialTest, ARefusedSettingIsFoundByItself) {
    FakeDaemon daemon(
        [](const std::string& command) { return command.find("999") != std::string::npos; });
    EXPECT_THAT(Try("Channel,Band\n999,5\n", daemon),
                ElementsAre("2:1 the daemon refuses Channel \"999\": not this"));
    EXPECT_THAT(daemon.commands,
                ElementsAre("-wifi-band 5 -wifi-channel 999", "-wifi-band 5", "-wifi-channel 999"));
}

TEST_F(SettingsTrialTest, ARefusedSettingIsToldWhereItIsWrittenAndNotWhereItIsCarriedOver) {
    FakeDaemon daemon(
        [](const std::string& command) { return command.find("999") != std::string::npos; });
    EXPECT_THAT(Try("Channel,Rate\n999,1\n-,2\n999,3\n36,3\n999,4\n-,5\n", daemon),
                ElementsAre("2:1 the daemon refuses Channel \"999\": not this",
                            "4:1 the daemon refuses Channel \"999\": not this",
                            "6:1 the daemon refuses Channel \"999\": not this"));
}

TEST_F(SettingsTrialTest, ASettingThatIsRefusedOnlyAfterItWasTakenIsToldWhereItIsCarriedOver) {
    bool isNarrow = false;
    FakeDaemon daemon([&isNarrow](const std::string& command) {
        isNarrow = isNarrow || command.find("band 2.4") != std::string::npos;
        return isNarrow && command.find("channel 100") != std::string::npos;
    });
    EXPECT_THAT(Try("Channel,Band\n100,5\n-,2.4\n", daemon),
                ElementsAre("3:1 the daemon refuses Channel \"100\": not this"));
}

TEST_F(SettingsTrialTest, SettingsThatAreRefusedTogetherOnlyAreToldForTheLine) {
    FakeDaemon daemon(
        [](const std::string& command) { return command == "-wifi-band 5 -wifi-channel 1"; });
    EXPECT_THAT(Try("Channel,Band\n1,5\n2,5\n", daemon),
                ElementsAre("2:0 the daemon refuses these settings together: not this"));
}

} // namespace
} // namespace Bench
