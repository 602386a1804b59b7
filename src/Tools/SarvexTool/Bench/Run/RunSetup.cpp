#include "Tools/SarvexTool/Bench/Run/RunSetup.h"

#include "Tools/SarvexTool/Bench/Files/TestLines.h"

#include <optional>
#include <stdexcept>

namespace Bench {

namespace {

/// What the daemon was set to by the lines that a run has already.
DeviceSettings SettingsSoFar(const RunDirectory& directory, const RunOptions& options) {
    DeviceSettings settings;
    if (options.firstCommandAccepted)
        settings.Accept(SettingsIn(AsSent(options.firstCommand)));
    TestLines lines(directory.Files().testFile);
    TestLine line;
    for (const JournalEntry& entry : ReadJournal(directory.Files().journal)) {
        if (lines.Read(line) && entry.outcome.isAccepted)
            settings.Accept(line.own);
    }
    return settings;
}

} // namespace

std::chrono::milliseconds Milliseconds(double seconds) {
    constexpr double perSecond = 1000;
    return std::chrono::milliseconds(static_cast<std::int64_t>(seconds * perSecond));
}

DaemonAddress DaemonIn(const RunFacts& facts) {
    const std::optional<DaemonAddress> address = ParseDaemonAddress(facts.daemon);
    if (!address || address->port == 0)
        throw std::runtime_error("the run's daemon \"" + facts.daemon + "\" is no address");
    return *address;
}

SupervisorOptions OptionsOf(RunDirectory& directory) {
    const RunFacts& facts = directory.Facts();
    SupervisorOptions options;
    options.retries = facts.options.retries;
    options.wait = Milliseconds(facts.options.wait);
    options.stopTimeout = Milliseconds(facts.options.stopTimeout);
    if (!facts.options.firstCommandAnswered)
        options.firstCommand = AsSent(facts.options.firstCommand);
    options.settings = SettingsSoFar(directory, facts.options);
    options.mayTransmit = facts.startPassedOn && !facts.stopConfirmed;
    return options;
}

} // namespace Bench
