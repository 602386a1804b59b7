#pragma once

#include "Tools/SarvexTool/Bench/Core/RunSource.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

/// What a run was asked for, as far as resuming it needs that. Times are in seconds.
struct RunOptions {
    std::uint32_t segment = 500;
    double answerTimeout = 60;
    std::uint32_t retries = 2;
    double wait = 300;
    double stopTimeout = 10;
    /// The path of the limits, where there are some.
    std::optional<std::string> limits;
    bool failFast = false;
    bool force = false;
    /// The path of the client.
    std::string client;
    /// The arguments of the client's own first command.
    std::vector<std::string> firstCommand;
    bool firstCommandAnswered = false;
    /// Whether the daemon keeps its settings.
    bool firstCommandAccepted = false;
    /// Whether the run is to be kept in a history when it is complete, and in which store where it
    /// is not the default one; without a password.
    bool keep = false;
    std::optional<std::string> store;

    bool operator==(const RunOptions&) const = default;
};

/// The test file of a run.
struct RunTestFile {
    /// Its path, with all folders.
    std::string name;
    /// Of its bytes, in 64 hexadecimal digits.
    std::string sha256;

    bool operator==(const RunTestFile&) const = default;
};

/// What there is to say about a run: who has run what, where and when, and what has come of it.
/// Moments are as UtcTime writes them.
struct RunFacts {
    std::string programVersion;
    std::string user;
    std::string host;
    std::string started;
    /// When it ended last; nothing while it goes on, and after it was killed.
    std::optional<std::string> ended;
    RunTestFile testFile;
    /// Of the client's bytes, which have no version to ask for.
    std::string clientSha256;
    /// HOST:PORT
    std::string daemon;
    RunPlace place;
    /// What somebody has told of the device's firmware and of the run. Any texts.
    std::optional<std::string> firmware;
    std::optional<std::string> note;
    /// Of the first segment; nothing until the daemon has told it.
    std::optional<std::int32_t> macType;
    std::optional<std::string> countryCode;
    RunOptions options;
    /// Whether a start of a transmission was ever passed on to the daemon.
    bool startPassedOn = false;
    /// Whether the daemon has confirmed the last stop.
    bool stopConfirmed = false;
    /// Lines of the test file without its header.
    std::uint64_t linesTotal = 0;
    std::uint64_t linesDone = 0;
    /// In words; empty while the run goes on, and after it was killed.
    std::string outcome;
    std::optional<std::int32_t> exitCode;
    /// Of all calls of the program, in sentences without an end mark.
    std::vector<std::string> notes;
    /// Whether the daemon closes connections that nothing is sent on.
    bool closesIdleConnections = false;
    /// Whether it was put together from runs of parts of its test file. Such a run has sent nothing
    /// itself, and cannot be resumed.
    bool isMerged = false;
    /// Of a merged run: the runs that its lines are from, in the order of the lines, and those that
    /// were not used.
    std::vector<RunSource> sources;
    std::vector<OtherAttempt> otherAttempts;

    /// Unless it is there already.
    void AddNote(const std::string& text);

    bool operator==(const RunFacts&) const = default;
};

/// As JSON, of several lines.
std::string ToJsonText(const RunFacts& facts);

/// Reads what ToJsonText has written. Unknown keys are ignored. The name is for the problems only.
/// Throws BadInput.
RunFacts ParseRunFacts(std::string_view text, const std::string& name);

/// Throws BadInput when the file cannot be read or holds no facts.
RunFacts ReadRunFacts(const std::string& name);

/// Writes the facts beside the file and renames them: whenever the program or the system dies, the
/// file holds either the old facts or the new ones. Throws std::system_error.
void WriteRunFacts(const std::string& name, const RunFacts& facts);

} // namespace Bench
