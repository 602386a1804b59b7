// The program that the tests start:
//   OSALTestsChild                 tells the port of its working directory how it was started
//   OSALTestsChild exit CODE       ends with the status for a return code
//   OSALTestsChild echo TEXT...    prints its arguments in brackets
//   OSALTestsChild sockets COUNT   prints how many sockets it could open at once
//   OSALTestsChild lock PATH END   prints whether it got the lock of the file ("taken" or "other"),
//   keeps
//                                  it until there is a file END, and ends without giving it back

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
    return TellHowStarted(arguments);
}
