#include "Tools/SarvexTool/Bench/Commands/Subcommands.h"

#include "Modules/xFramework/OSAL/Process.h"
#include "Modules/xFramework/OSAL/Socket.h"
#include "Tools/SarvexTool/Bench/Commands/HistoryOptions.h"
#include "Tools/SarvexTool/Bench/Commands/KeepRun.h"
#include "Tools/SarvexTool/Bench/Commands/OptionValues.h"
#include "Tools/SarvexTool/Bench/Commands/RunArguments.h"
#include "Tools/SarvexTool/Bench/Commands/RunCall.h"
#include "Tools/SarvexTool/Bench/Commands/RunChecks.h"
#include "Tools/SarvexTool/Bench/Commands/RunConsole.h"
#include "Tools/SarvexTool/Bench/Commands/Stop.h"
#include "Tools/SarvexTool/Bench/Daemon/Daemon.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/LimitsFile.h"
#include "Tools/SarvexTool/Bench/Files/Locks.h"
#include "Tools/SarvexTool/Bench/Files/NewRunFolder.h"
#include "Tools/SarvexTool/Bench/Files/RunDirectory.h"
#include "Tools/SarvexTool/Bench/Files/TestLines.h"
#include "Tools/SarvexTool/Bench/Files/UtcTime.h"
#include "Tools/SarvexTool/Bench/History/OpenServer.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"
#include "Tools/SarvexTool/Bench/Run/RunSetup.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace Bench {

namespace {

std::string Now() {
    return UtcTime(std::chrono::system_clock::now());
}

/// Where the environment does not tell it, the system's number of the user, if it has one: the
/// folder of his locks has it at its end.
std::string UserName() {
    for (const char* variable : {"USER", "LOGNAME", "USERNAME"}) {
        const char* const name = std::getenv(variable); // NOLINT(concurrency-mt-unsafe)
        if (name != nullptr && *name != '\0')
            return name;
    }
    const std::string folder = LockFolder("SarvexToolBench");
    return folder.substr(folder.find_last_not_of("0123456789") + 1);
}

std::string Absolute(const std::string& name) {
    return NameOf(std::filesystem::absolute(PathOf(name)).lexically_normal());
}

/// How many lines one client can run with the connections that it keeps open.
std::uint32_t MostSegmentLines() {
    constexpr std::uint64_t otherFiles = 32;
    constexpr std::uint64_t most = 1'000'000;
    const std::uint64_t files = std::max(OSAL::MostOpenFiles(), otherFiles + 2);
    return static_cast<std::uint32_t>(
        std::min({(files - otherFiles) / 2, OSAL::MostPorts() / 2, most}));
}

std::uint32_t SegmentOf(const std::optional<std::string>& text) {
    constexpr std::uint32_t usual = 500;
    const std::uint32_t most = MostSegmentLines();
    return text ? NumberOf("--segment", *text, 1, most) : std::min(usual, most);
}

std::string ClientPath(const std::optional<std::string>& given) {
    std::string suffix = OSAL::ExecutableSuffix;
    suffix.erase(suffix.find_last_not_of(' ') + 1);
    const std::filesystem::path folder = PathOf(OSAL::ModulePathInUtf8()).parent_path();
    std::string path = Absolute(given ? *given : NameOf(folder / ("SarvexToolClient" + suffix)));
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(PathOf(path), ignored))
        throw BadInput(path, "is no file; the client is looked for beside this program, or where "
                             "--client says");
    return path;
}

/// What is wrong with a store's name is told before the run, not after it.
StoreName UsableStore(const std::optional<std::string>& text) {
    StoreName store = StoreNameOf(text);
    if (store.IsServer())
        RequireServers(store);
    return store;
}

/// The store of --keep as the run's facts may tell it. What has a password would tell that too.
std::string StoreToTell(const std::string& text) {
    const StoreName store = UsableStore(text);
    if (store.HasPassword())
        throw WrongUsage(
            "--store has a password, which the run's run.json would tell to everybody; "
            "leave it out, and give it in the variable PGPASSWORD or a password file "
            "(PGPASSFILE)");
    return store.IsServer() ? store.Shown() : Absolute(store.File());
}

RunOptions OptionsFrom(const RunArguments& arguments, const std::vector<std::string>& handedOn) {
    constexpr std::uint32_t mostRetries = 1000;
    RunOptions options;
    options.segment = SegmentOf(arguments.segment);
    options.answerTimeout = TimeOf("--answer-timeout", arguments.answerTimeout);
    options.retries = NumberOf("--retries", arguments.retries, 0, mostRetries);
    options.wait = TimeOf("--wait", arguments.wait);
    options.stopTimeout = TimeOf("--stop-timeout", arguments.stopTimeout);
    if (arguments.limits)
        options.limits = Absolute(*arguments.limits);
    options.failFast = arguments.failFast;
    options.force = arguments.force;
    options.client = ClientPath(arguments.client);
    options.firstCommand = handedOn;
    options.keep = arguments.keep;
    if (arguments.store)
        options.store = StoreToTell(*arguments.store);
    else if (arguments.keep)
        UsableStore(std::nullopt);
    return options;
}

RunPlace PlaceFrom(const RunArguments& arguments) {
    constexpr std::uint32_t mostAttempts = 1'000'000;
    RunPlace place;
    place.bench = TextFrom("--bench", arguments.bench, "a name");
    place.device = TextFrom("--device", arguments.device, "a name");
    if (arguments.attempt)
        place.attempt = NumberOf("--attempt", *arguments.attempt, 1, mostAttempts);
    return place;
}

RunFacts FactsFrom(const RunArguments& arguments, const std::vector<std::string>& handedOn) {
    RunFacts facts;
    facts.programVersion = SARVEX_BENCH_VERSION;
    facts.user = UserName();
    facts.host = OwnHostName();
    facts.started = Now();
    facts.daemon = DaemonOf(arguments.daemon).ToText();
    facts.place = PlaceFrom(arguments);
    facts.firmware = TextFrom("--firmware", arguments.firmware);
    facts.note = TextFrom("--note", arguments.note);
    facts.options = OptionsFrom(arguments, handedOn);
    facts.clientSha256 = HashOfFile(facts.options.client);
    facts.linesTotal = CountTestLines(*arguments.file);
    return facts;
}

/// What goes into the run's folder but its name.
LockHolder Holder(const std::string& directory) {
    return {OSAL::ProcessId(), Absolute(directory), Now()};
}

/// A pipe, for instance, would be empty when it is read again, or be waited for. A file that is not
/// there is told when it is read.
void RequireOrdinaryFile(const std::string& name) {
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(PathOf(name), ignored);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        throw BadInput(name,
                       "is no ordinary file; a run reads it more than once, so save it in one");
}

int RunAndKeep(RunDirectory& directory, const std::string& progress, RunConsole& console) {
    int exitCode = RunTest(directory, progress, console);
    if (directory.Facts().options.keep)
        exitCode = KeepRun(directory, exitCode, console);
    console.Finish(exitCode);
    return exitCode;
}

/// The folder of a new run. From then on nobody else gets its daemon.
RunDirectory CreateDirectory(const RunArguments& arguments, const RunFacts& facts,
                             std::optional<OSAL::FileLock>& daemonLock) {
    const auto create = [&](const std::string& name) {
        if (facts.options.keep)
            RequireStore(facts, RunFiles(name));
        // One with another folder's name.
        daemonLock.reset();
        daemonLock = LockDaemonAt(DaemonIn(facts), Absolute(name));
        return RunDirectory::Create(name, *arguments.file, facts, Holder(name));
    };
    if (arguments.out)
        return create(*arguments.out);
    const auto now = std::chrono::system_clock::now();
    return CreateUnderNewName([&] { return NewRunName(*arguments.file, now); }, create);
}

int RunNew(const RunArguments& arguments, Surroundings& surroundings) {
    if (*arguments.file == StandardStreamName || arguments.limits == StandardStreamName)
        throw WrongUsage("a run takes no file from standard input: resuming needs it once more");
    if (arguments.out == StandardStreamName || arguments.out == "")
        throw WrongUsage("--out needs the name of a folder");
    RequireOrdinaryFile(*arguments.file);
    if (arguments.limits)
        RequireOrdinaryFile(*arguments.limits);
    if (arguments.store && !arguments.keep)
        throw WrongUsage("--store needs --keep");
    RequireRelayed(surroundings.handedOn);
    const RunFacts facts = FactsFrom(arguments, surroundings.handedOn);
    if (facts.options.limits) {
        TextPool texts;
        ReadLimits(*facts.options.limits, surroundings.in, texts);
    }
    if (!IsFitToRun(*arguments.file, arguments.force, surroundings))
        return ExitCode::Failed;
    std::optional<OSAL::FileLock> daemonLock;
    RunDirectory directory = CreateDirectory(arguments, facts, daemonLock);
    RunConsole console(surroundings, arguments.progress == "json", std::make_unique<EndRequests>());
    if (!arguments.out)
        console.Streams().err.stream << "The run is in "
                                     << MakeHarmless(directory.Files().directory) << "\n";
    return RunAndKeep(directory, arguments.progress, console);
}

void RequireUnfinished(RunDirectory& directory) {
    const RunFacts& facts = directory.Facts();
    if (facts.outcome == "complete" && (facts.stopConfirmed || !facts.startPassedOn))
        throw BadInput(directory.Files().directory, "is complete; there is nothing to go on with");
}

/// The daemon is locked.
int GoOn(RunDirectory& directory, const std::string& progress,
         std::unique_ptr<EndRequests> pRequests, Surroundings& surroundings) {
    RunFacts& facts = directory.Facts();
    // The system may allow fewer open files than when the run began.
    facts.options.segment = std::min(facts.options.segment, MostSegmentLines());
    if (HashOfFile(facts.options.client) != facts.clientSha256)
        facts.AddNote("the client is not the one that the run began with");
    RunConsole console(surroundings, progress == "json", std::move(pRequests));
    return RunAndKeep(directory, progress, console);
}

/// The facts of a run that may have left the transmitter on; nothing for any other folder, nor for
/// a merged one, which has sent nothing itself.
std::optional<RunFacts> FactsOfUnstopped(const std::string& directory) {
    try {
        RunFacts facts = ReadRunFacts(RunFiles(directory).facts);
        const bool mayTransmit = facts.startPassedOn && !facts.stopConfirmed && !facts.isMerged;
        return mayTransmit ? std::optional(std::move(facts)) : std::nullopt;
    } catch (const BadFile&) {
        return std::nullopt;
    }
}

/// Where plain words go beside a run's: standard output may be for JSON.
Surroundings WordsBeside(const std::string& progress, Surroundings& surroundings) {
    return {surroundings.in, progress == "json" ? surroundings.err : surroundings.out,
            surroundings.err};
}

/// For a stop that is not to go into somebody else's run: then tells why there is only a stop, lets
/// requests end the program, for there is no stop to wait for, and throws InUse. Where locks cannot
/// be made at all there is none.
std::optional<OSAL::FileLock> LockDaemonIfPossible(const DaemonAddress& daemon,
                                                   const std::string& run, const std::string& why,
                                                   std::unique_ptr<EndRequests>& pRequests,
                                                   Surroundings& surroundings) {
    try {
        return LockDaemonAt(daemon, run);
    } catch (const InUse&) {
        pRequests.reset();
        surroundings.err.stream << why;
        throw;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

/// Stops the transmission of a run that cannot go on: the transmitter is not to stay on for that.
/// Then tells why, for nobody may read it.
int StopUnfinished(const RunFacts& facts, const std::string& why,
                   std::unique_ptr<EndRequests> pRequests, Surroundings& surroundings) {
    // A run that began has taken those that were held.
    if (!pRequests)
        pRequests = std::make_unique<EndRequests>();
    HoldUntilStopped(*pRequests, DaemonIn(facts), surroundings, why);
    return StopUnresumed(DaemonIn(facts), facts.options.stopTimeout, why, *pRequests, surroundings);
}

/// What a run may have left on when it was killed is stopped before its files are read, which takes
/// seconds for a long one. The run itself stops the transmission once more, and keeps that in its
/// files. Nobody else gets the run or its daemon in between: if the stop was missed, the one who
/// resumes is to hear of it.
int ResumeUnstopped(const RunFacts& facts, const RunArguments& arguments,
                    Surroundings& surroundings) {
    const std::string& name = *arguments.resume;
    Surroundings beside = WordsBeside(arguments.progress, surroundings);
    auto pRequests = std::make_unique<EndRequests>();
    std::optional<OSAL::FileLock> daemonLock;
    std::ostringstream why;
    try {
        HoldUntilStopped(*pRequests, DaemonIn(facts), beside);
        OSAL::FileLock lock = RunDirectory::Lock(name, Holder(name));
        daemonLock = LockDaemonAt(DaemonIn(facts), Absolute(name));
        if (const auto ended =
                StopAhead(DaemonIn(facts), facts.options.stopTimeout, *pRequests, beside))
            return *ended;
        RunDirectory directory = RunDirectory::Resume(name, Holder(name), std::move(lock));
        RequireUnfinished(directory);
        return GoOn(directory, arguments.progress, std::move(pRequests), surroundings);
    } catch (const InUse&) {
        throw;
    } catch (const BadFile& bad) {
        PrintProblems({why, surroundings.err.hasColours}, bad.File(), bad.Problems());
    } catch (const std::exception& error) {
        why << MakeHarmless(error.what()) << "\n";
    }
    if (!daemonLock)
        daemonLock =
            LockDaemonIfPossible(DaemonIn(facts), Absolute(name), why.str(), pRequests, beside);
    return StopUnfinished(facts, why.str(), std::move(pRequests), beside);
}

int Resume(const RunArguments& arguments, Surroundings& surroundings) {
    const std::string& name = *arguments.resume;
    // As with a variable of a script that is not set.
    if (name.empty())
        throw WrongUsage("--resume needs the name of a folder");
    if (const std::optional<RunFacts> unstopped = FactsOfUnstopped(name))
        return ResumeUnstopped(*unstopped, arguments, surroundings);
    RunDirectory directory = RunDirectory::Resume(name, Holder(name));
    RequireUnfinished(directory);
    const OSAL::FileLock daemonLock = LockDaemonAt(DaemonIn(directory.Facts()), Absolute(name));
    return GoOn(directory, arguments.progress, std::make_unique<EndRequests>(), surroundings);
}

int Run(const Options app, const RunArguments& arguments, Surroundings& surroundings) {
    if (!arguments.file && !arguments.resume)
        throw WrongUsage("either TEST_FILE or --resume DIR is needed");
    if (arguments.file && arguments.resume)
        throw WrongUsage("TEST_FILE and --resume DIR cannot be given both");
    if (arguments.progress != "text" && arguments.progress != "json")
        throw WrongUsage("--progress " + arguments.progress + " is neither text nor json");
    if (!arguments.resume)
        return RunNew(arguments, surroundings);
    for (const std::string& name : app.Given()) {
        if (name != "--resume" && name != "--progress")
            throw WrongUsage("--resume takes all options from the run; leave out " + name);
    }
    if (!surroundings.handedOn.empty())
        throw WrongUsage("--resume takes the client's own first command from the run");
    return Resume(arguments, surroundings);
}

} // namespace

Command AddRun(Options program) {
    const Options app = program.AddSubcommand("run", "Run a power test under supervision");
    const auto arguments = std::make_shared<RunArguments>();
    AddRunOptions(app, *arguments);
    app.Footer(
        "What follows -- is the client's own first command. Exit code: 0 complete and all measured "
        "or, with limits, passed; 1 complete, but something was not, or --keep could not keep "
        "it, or ended by --fail-fast; 2 "
        "wrong usage, a file that is wrong or cannot be read or written, or a daemon or folder in "
        "use; 3 ended early, to be resumed; 4 the last stop was not confirmed: the transmitter may "
        "be on.");
    return {
        app,
        [app, arguments](Surroundings& surroundings) { return Run(app, *arguments, surroundings); },
        true};
}

} // namespace Bench
