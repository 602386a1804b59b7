#include "Tools/SarvexTool/Client/Program/EntryPoint.h"

#include "Modules/xFramework/Utilities/Exception.h"
#include "Tools/SarvexTool/Client/CliClient.h"
#include "Tools/SarvexTool/Client/Launcher.h"
#include "Tools/Vemo/VemoClient/DynamicTest/DynamicTest.h"

#include <array>
#include <cctype>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace SarvexTool {

// The byte 0x85 is the ellipsis of the console's code page Windows-1252; it is in a piece of
// its own so that the escape ends before the next character.
const char* const usageText =
    "Use the following syntax to set Sarvex Tool's configuration:\n"
    "\n"
    "SarvexToolClient.exe [-option1 <parameter1>] [-option2 <parameter2>] [-option3 <parameter3>] "
    "[\x85"
    "]\n"
    "\n"
    "General options:\n"
    "\n"
    "\t[-connectBin] \t\tConnect to the device with Bin Commands.\n"
    "\n"
    "\t[-disconnectBin] \tDisconnect from the device with Bin Commands.\n"
    "\n"
    "\t[-disconnect] \t\tDisconnect from the device with Bin Commands.\n"
    "\n"
    "\t[-exit] \t\t\tClose SarvexTool.\n"
    "\n"
    "\t[-remote <IP Address>]\t\tSet the remote address.\n"
    "\n"
    "\t[-set_init_retries <retries count>]\t\tSet number of times the tool tries to connect to "
    "AT@.\n"
    "\n"
    "\t[-open_local_daemon\t\tStarts Sarvex Tool.\n"
    "\n"
    "\t[-no_automation\t\tClient doesn't wait for response.\n"
    "\n";

namespace {

constexpr int notConnectedCode = 1;
constexpr int exceptionCode = 256;
constexpr int daemonNotStartedCode = 258;

/// Arguments that go to the daemon under another name; only the first of each changes.
struct Rewrite {
    const char* from;
    const char* to;
};
constexpr std::array<Rewrite, 2> rewrites{
    {{"-connect", "-connectbin"}, {"-disconnect", "-disconnectxvt"}}};

/// Thrown when the test mode's arguments could not be taken out of the list.
struct TestArgumentFailure {};

void RemoveTestArguments(CliClient& client, const std::string& flag, const std::string& fileName) {
    try {
        client.RemoveArgument(flag);
        client.RemoveArgument(fileName);
    } catch (...) {
        Utilities::TakeCaughtException();
        throw TestArgumentFailure{};
    }
}

/// Takes every "-wifi-test-by-file" that has an argument after it, and that argument, out of the
/// client's list; returns the last such file name. The file name itself is compared like any other
/// argument.
std::optional<std::string> TakeTestFile(CliClient& client,
                                        const std::vector<std::string>& arguments) {
    const std::string flag = "-wifi-test-by-file";
    std::optional<std::string> fileName;
    for (std::size_t index = 0; index + 1 < arguments.size(); ++index) {
        if (arguments[index] != flag)
            continue;
        fileName = arguments[index + 1];
        RemoveTestArguments(client, flag, *fileName);
    }
    return fileName;
}

void PrintUsageWhenAsked(const CliClient& client) {
    if (client.HasArgument("-?") || client.HasArgument("-help"))
        // At once: a daemon that is started next writes to the same console.
        std::cout << usageText << std::flush;
}

/// False when the local daemon was asked for and could not be started.
bool OpenLocalDaemonWhenAsked(CliClient& client) {
    return !client.RemoveArgument("-open_local_daemon") || StartLocalDaemon("vemo");
}

int RunCommand(CliClient& client, const std::vector<std::string>& arguments) {
    const std::optional<std::string> testFile = TakeTestFile(client, arguments);
    PrintUsageWhenAsked(client);
    if (!OpenLocalDaemonWhenAsked(client))
        return daemonNotStartedCode;
    for (const Rewrite& rewrite : rewrites)
        client.ReplaceArgument(rewrite.from, rewrite.to);
    const std::string prefix = client.AreAllKnownCommands() ? "" : "-vemo ";
    // The address is ignored: the client connects to the one that it holds.
    if (!client.Connect("127.0.0.1")) {
        std::cerr << "Failed to connect to daemon. Please ensure that daemon was started."
                  << std::endl;
        return notConnectedCode;
    }
    const int returnCode = client.SendCommand(true, prefix);
    return testFile ? DynamicTest(*testFile).Run() : returnCode;
}

std::string FailureMessage(const Utilities::CaughtException& caught) {
    using Kind = Utilities::CaughtException::Kind;
    switch (caught.kind) {
    case Kind::Framework:
        return caught.text;
    case Kind::StreamFailure:
        return "Failed to read daemon response. " + caught.text;
    case Kind::Standard:
    case Kind::Unknown:
        break;
    }
    return "Failed to handle commands.";
}

int RunGuarded(const std::vector<std::string>& arguments) {
    try {
        std::vector<const char*> pointers;
        for (const std::string& argument : arguments)
            pointers.push_back(argument.c_str());
        CliClient client(static_cast<int>(pointers.size()), pointers.data());
        return RunCommand(client, arguments);
    } catch (const TestArgumentFailure&) {
        // The quotation mark that is never closed is how scripts know this message.
        std::cerr << "Failed to move 'test-by-file arg." << std::endl;
    } catch (...) {
        std::cerr << FailureMessage(Utilities::TakeCaughtException()) << std::endl;
    }
    return exceptionCode;
}

} // namespace

std::vector<std::string> CopyArguments(int argc, const char* const argv[]) {
    std::vector<std::string> copies(argv, argv + argc);
    if (copies.empty() || copies.back().empty())
        return copies;
    std::string& last = copies.back();
    if (std::isspace(static_cast<unsigned char>(last.back())) != 0)
        last.pop_back();
    return copies;
}

int RunClient(int argc, const char* const argv[]) {
    const std::vector<std::string> arguments = CopyArguments(argc, argv);
    if (arguments.size() >= 2)
        return RunGuarded(arguments);
    std::cout << "Usage: " << (argc > 0 ? argv[0] : "") << " [args]" << std::endl;
    return 0;
}

} // namespace SarvexTool
