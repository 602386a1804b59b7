#include "Tools/SarvexTool/Bench/Daemon/SettingsTrial.h"

#include <array>
#include <string>
#include <utility>

namespace Bench {

namespace {

/// Tries the configurations of one file.
class Trial {
public:
    Trial(CheckedTestFile& file, IDaemon& daemon) : m_file(file), m_daemon(daemon) {}

    void Run() {
        for (const PlannedConfiguration& configuration : m_file.plan.distinct)
            Try(configuration);
    }

private:
    using Arguments = std::vector<std::string>;

    static void AddSetting(Arguments& arguments, Setting setting, const std::string& text) {
        arguments.emplace_back(PowerTest::columnCommands[static_cast<std::size_t>(setting)].option);
        arguments.push_back(text);
    }

    void Try(const PlannedConfiguration& configuration) {
        Arguments arguments;
        for (std::size_t index = 0; index < SettingCount; ++index) {
            const auto setting = static_cast<Setting>(index);
            if (configuration.settings[setting] != nullptr)
                AddSetting(arguments, setting, *configuration.settings[setting]);
        }
        if (arguments.empty())
            return;
        const DaemonAnswer answer = m_daemon.Ask(arguments);
        if (answer.isRefusal && !TellRefusedSettings(configuration))
            m_file.problems.Add(TestFileProblem::refused, configuration.line, 0,
                                "the daemon refuses these settings together: " + answer.words);
    }

    /// Whether there is a setting that the daemon refuses by itself.
    bool TellRefusedSettings(const PlannedConfiguration& configuration) {
        bool isFound = false;
        for (std::size_t index = 0; index < SettingCount; ++index) {
            const auto setting = static_cast<Setting>(index);
            const std::string* const pText = configuration.settings[setting];
            if (pText == nullptr)
                continue;
            Arguments arguments;
            AddSetting(arguments, setting, *pText);
            const DaemonAnswer answer = m_daemon.Ask(arguments);
            if (!answer.isRefusal)
                continue;
            isFound = true;
            const std::string* const pTold = std::exchange(m_told[index], pText);
            // Where it was written, not in each line that carries it over.
            if (pTold == pText && !configuration.IsOwn(setting))
                continue;
            m_file.problems.Add(TestFileProblem::refused, configuration.line, m_file.columns[index],
                                std::string("the daemon refuses ") + NameOf(setting) + " \"" +
                                    *pText + "\": " + answer.words);
        }
        return isFound;
    }

    CheckedTestFile& m_file;
    IDaemon& m_daemon;
    /// The value of each setting that was refused last.
    std::array<const std::string*, SettingCount> m_told{};
};

} // namespace

void TrySettings(CheckedTestFile& file, IDaemon& daemon) {
    Trial(file, daemon).Run();
}

} // namespace Bench
