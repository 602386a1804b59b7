#include "Tools/SarvexTool/Bench/Commands/Subcommands.h"

#include "Modules/xFramework/OSAL/Socket.h"
#include "Tools/SarvexTool/Bench/Commands/OptionValues.h"
#include "Tools/SarvexTool/Bench/Commands/Outputs.h"
#include "Tools/SarvexTool/Bench/Core/Estimate.h"
#include "Tools/SarvexTool/Bench/Daemon/SettingsTrial.h"
#include "Tools/SarvexTool/Bench/Files/Correction.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/OutputFile.h"
#include "Tools/SarvexTool/Bench/Files/TestFileCheck.h"
#include "Tools/SarvexTool/Bench/Output/PlanText.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Bench {

namespace {

struct CheckOptions {
    std::vector<std::string> files;
    std::optional<std::string> write;
    std::optional<std::string> macType;
    std::optional<std::string> exchange;
    std::optional<std::string> daemon;
    std::string timeout = "10";
};

bool IsSlow(const std::string& macType) {
    std::uint32_t number = 0;
    const char* const end = macType.data() + macType.size();
    const auto [rest, error] = std::from_chars(macType.data(), end, number);
    if (error != std::errc() || rest != end)
        throw WrongUsage("--mac-type " + macType + " is no number");
    return number == SlowMacType;
}

std::chrono::milliseconds TimeoutOf(const std::string& text) {
    const double seconds = SecondsOf("--timeout", text).ToDouble();
    const auto timeout = std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
    if (timeout.count() == 0)
        throw WrongUsage("--timeout is too short");
    return timeout;
}

/// Checks the files of one call, one after the other.
class Check {
public:
    Check(const CheckOptions& options, Surroundings& surroundings)
        : m_options(options),
          m_surroundings(surroundings),
          // What is told must not get into a corrected file on standard output.
          m_console(options.write == StandardStreamName ? surroundings.err : surroundings.out) {
        if (options.write && options.files.size() > 1)
            throw WrongUsage("--write takes one FILE");
        RequireDistinctFiles(options.files, options.write ? std::vector{*options.write}
                                                          : std::vector<std::string>());
        m_conditions.isSlowDevice = options.macType && IsSlow(*options.macType);
        if (options.exchange)
            m_conditions.exchangeSeconds = SecondsOf("--exchange", *options.exchange).ToDouble();
        const std::chrono::milliseconds timeout = TimeoutOf(options.timeout);
        if (!options.daemon)
            return;
        const DaemonAddress address = DaemonOf(*options.daemon);
        // The settings of a run that goes on must not change under it.
        m_daemonLock.emplace(LockDaemonAt(address, ""));
        m_daemon.emplace(address, timeout);
    }

    int Run() {
        int exitCode = ExitCode::Fine;
        for (const std::string& name : m_options.files)
            exitCode = std::max(exitCode, TryFile(name));
        if (m_daemon && m_daemon->MayHaveTakenCommands())
            m_console.stream << "The settings of the device at " << MakeHarmless(*m_options.daemon)
                             << (m_daemon->Exchanges() > 0 ? " have" : " may have")
                             << " changed.\n";
        return exitCode;
    }

private:
    /// A file that cannot be read does not keep others from being checked.
    int TryFile(const std::string& name) {
        try {
            return CheckFile(name);
        } catch (const BadFile& bad) {
            PrintProblems(m_surroundings.err, bad.File(), bad.Problems());
            return ExitCode::Failed;
        }
    }

    int CheckFile(const std::string& name) {
        const std::string bytes = ReadInput(name, m_surroundings.in);
        if (!m_options.write)
            return CheckBytes(name, bytes);
        const CorrectedTestFile corrected = CorrectTestFile(bytes);
        WriteOutput(*m_options.write, m_surroundings.out.stream, corrected.bytes);
        PrintCorrections(m_console, name, corrected.changes.InOrder());
        return CheckBytes(*m_options.write, corrected.bytes);
    }

    int CheckBytes(const std::string& name, std::string_view bytes) {
        TextPool pool;
        CheckedTestFile file =
            CheckTestFile(bytes, pool, MostLines({OSAL::MostOpenFiles(), OSAL::MostPorts()}));
        const std::optional<BadFile> daemonFailure = TryOnDaemon(name, file);
        PrintProblems(m_console, name, file.problems.InOrder());
        PrintSummary(name, file);
        if (daemonFailure) {
            // At the end, where it is seen: the file may be right, but the settings are not tried.
            PrintProblems(m_surroundings.err, daemonFailure->File(), daemonFailure->Problems());
            return ExitCode::Failed;
        }
        return file.problems.Count(Severity::Error) > 0 ? ExitCode::Found : ExitCode::Fine;
    }

    /// Why the daemon could not be asked, if so: what is found in the file is told all the same.
    std::optional<BadFile> TryOnDaemon(const std::string& name, CheckedTestFile& file) {
        if (!m_daemon)
            return std::nullopt;
        if (file.problems.Count(Severity::Error) > 0) {
            PrintProblems(m_surroundings.err, name,
                          std::vector<Problem>{{Severity::Warning, 0, 0,
                                                "the daemon is asked when the file has no "
                                                "errors"}});
            return std::nullopt;
        }
        try {
            TrySettings(file, *m_daemon);
            if (!m_options.exchange)
                m_conditions.exchangeSeconds = m_daemon->MeanSeconds();
            return std::nullopt;
        } catch (const BadFile& bad) {
            return bad;
        }
    }

    void PrintSummary(const std::string& name, const CheckedTestFile& file) {
        const double seconds = EstimateSeconds(file.plan.configurations, m_conditions);
        const std::string counts = ProblemCountsText(file.problems.Count(Severity::Error),
                                                     file.problems.Count(Severity::Warning));
        m_console.stream << MakeHarmless(name) << ": " << counts << "; "
                         << PlanText(file.plan, seconds) << "\n";
    }

    const CheckOptions& m_options;
    Surroundings& m_surroundings;
    const Console& m_console;
    RunConditions m_conditions;
    std::optional<OSAL::FileLock> m_daemonLock;
    std::optional<Daemon> m_daemon;
};

void AddOptions(Options app, CheckOptions& options) {
    app.Add("FILE", options.files, "Test file, - for standard input").Required().TypeName("");
    app.Add("--write", options.write,
            "Write a copy with what can be corrected for certain, - for standard output")
        .TypeName("OUT");
    app.Add("--mac-type", options.macType,
            "MAC type of the device, for the time of a run: with 16 each line takes 5 s")
        .TypeName("N");
    app.Add("--exchange", options.exchange,
            "How long an exchange with the daemon takes, for the time of a run")
        .TypeName("SECONDS");
    app.Add("--daemon", options.daemon,
            "Try the settings on a daemon, without calibrating or starting anything; its "
            "settings are changed. Without PORT the one in Socket.cfg beside this program")
        .TypeName("HOST[:PORT]");
    app.Add("--timeout", options.timeout, "How long an exchange with the daemon may take")
        .TypeName("SECONDS")
        .ShowDefault();
}

} // namespace

Command AddCheck(Options program) {
    const Options app = program.AddSubcommand("check", "Tell all that is wrong with test files");
    const auto options = std::make_shared<CheckOptions>();
    AddOptions(app, *options);
    app.Footer("Exit code: 0 no error, 1 errors found, 2 wrong usage, a file that cannot be "
               "read or written, or a daemon that does not answer.");
    return {app,
            [options](Surroundings& surroundings) { return Check(*options, surroundings).Run(); }};
}

} // namespace Bench
