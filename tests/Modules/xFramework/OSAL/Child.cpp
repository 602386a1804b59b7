// The program that the tests start:
//   OSALTestsChild                 tells the port of its working directory how it was started
//   OSALTestsChild exit CODE       ends with the status for a return code
//   OSALTestsChild echo TEXT...    prints its arguments in brackets
//   OSALTestsChild sockets COUNT   prints how many sockets it could open at once
//   OSALTestsChild lock PATH END   prints whether it got the lock of the file ("taken" or "other"),
//                                  keeps it until there is a file END, and ends without giving it
//                                  back
//   OSALTestsChild utf8 TEXT...    prints its arguments, as UTF-8, in brackets
//   OSALTestsChild streams         tells how its standard streams and its directory are
//   OSALTestsChild hold PORT       connects to the port, writes held.txt, then sleeps until it is
//                                  ended, ten minutes at most
//   OSALTestsChild starter HOLD OWN
//                                  starts one that holds HOLD; ends without tidying up when it gets
//                                  a byte from OWN

#include "Modules/xFramework/OSAL/ChildProcess.h"
#include "Modules/xFramework/OSAL/Console.h"
#include "Modules/xFramework/OSAL/FileLock.h"
#include "Modules/xFramework/OSAL/Process.h"
#include "Modules/xFramework/OSAL/Socket.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace {

using Arguments = std::vector<std::string>;

OSAL::AddressInfo* Resolve(const std::string& port) {
    OSAL::StartSockets();
    return OSAL::ResolveAddress("127.0.0.1", port);
}

int TellHowStarted(const Arguments& arguments) {
    std::string port;
    std::getline(std::ifstream("port.txt"), port);
    const char* const variable = std::getenv("OSAL_TESTS_CHILD");
    std::string report = std::filesystem::current_path().string() + "\n";
    report += std::string(variable == nullptr ? "nothing" : variable) + " inherited\n";
    for (const std::string& argument : arguments)
        report += "[" + argument + "]";
    OSAL::AddressInfo* const address = Resolve(port);
    const OSAL::SocketHandle socket = OSAL::CreateSocket(address);
    OSAL::ConnectSocket(socket, address);
    OSAL::SendSocket(socket, report.data(), report.size());
    OSAL::CloseSocket(socket);
    OSAL::FreeAddress(address);
    return 0;
}

int Exit(const Arguments& arguments) {
    return OSAL::ToExitStatus(std::stoi(arguments.at(2)));
}

int Echo(const Arguments& arguments) {
    for (std::size_t i = 2; i < arguments.size(); ++i)
        std::cout << "[" << arguments[i] << "]";
    return 0;
}

int OpenSockets(const Arguments& arguments) {
    OSAL::AddressInfo* const address = Resolve("1");
    int count = 0;
    for (int i = 0; i < std::stoi(arguments.at(2)); ++i)
        count += OSAL::CreateSocket(address) != OSAL::InvalidSocket ? 1 : 0;
    OSAL::FreeAddress(address);
    std::cout << count;
    return 0;
}

int Lock(const Arguments& arguments) {
    constexpr std::uint32_t pause = 5;
    const std::optional<OSAL::FileLock> lock =
        OSAL::FileLock::TryLock(arguments.at(2), "the tests' child");
    std::cout << (lock ? "taken" : "other") << std::flush;
    while (!std::filesystem::exists(arguments.at(3)))
        OSAL::Sleep(pause);
    std::_Exit(0);
}

int PrintUtf8(int count, char** texts) {
    const Arguments arguments = OSAL::ReadArguments(count, texts);
    for (std::size_t i = 1; i < arguments.size(); ++i)
        std::cout << "[" << arguments[i] << "]";
    return 0;
}

int TellStreams() {
    std::cout << (std::cin.get() == EOF ? "no input\n" : "input\n") << std::flush;
    std::cerr << "an error\n";
    std::cout << std::filesystem::current_path().filename().string() << "\n";
    return 7;
}

/// A new connection, over which a byte has been sent.
OSAL::SocketHandle Report(const std::string& port) {
    OSAL::AddressInfo* const address = Resolve(port);
    const OSAL::SocketHandle socket = OSAL::CreateSocket(address);
    OSAL::ConnectSocket(socket, address);
    OSAL::SendSocket(socket, "+", 1);
    OSAL::FreeAddress(address);
    return socket;
}

int Hold(const Arguments& arguments) {
    constexpr std::uint32_t longestMilliseconds = 600'000;
    Report(arguments.at(2));
    std::ofstream("held.txt").put('+');
    OSAL::Sleep(longestMilliseconds);
    return 4;
}

int Start(const Arguments& arguments) {
    std::string program;
    OSAL::ReadModulePath(program);
    const OSAL::ChildProcess child({program, {"hold", arguments.at(2)}, ".", "started.log"});
    char byte = 0;
    if (OSAL::ReceiveSocket(Report(arguments.at(3)), &byte, 1) > 0)
        std::_Exit(3);
    return 4;
}

} // namespace

int main(int count, char** texts) {
    const Arguments arguments(texts, texts + count);
    const std::string mode = count > 1 ? arguments[1] : "";
    if (mode == "exit")
        return Exit(arguments);
    if (mode == "echo")
        return Echo(arguments);
    if (mode == "sockets")
        return OpenSockets(arguments);
    if (mode == "lock")
        return Lock(arguments);
    if (mode == "utf8")
        return PrintUtf8(count, texts);
    if (mode == "streams")
        return TellStreams();
    if (mode == "hold")
        return Hold(arguments);
    if (mode == "starter")
        return Start(arguments);
    return TellHowStarted(arguments);
}
