#include "Tools/Vemo/VemoSimulator/Program.h"

#include "Modules/xFramework/OSAL/Socket.h"
#include "Tools/Vemo/VemoSimulator/Options.h"
#include "Tools/Vemo/VemoSimulator/PortFile.h"
#include "Tools/Vemo/VemoSimulator/Server.h"
#include "Tools/Vemo/VemoSimulator/Simulator.h"

#include <fstream>
#include <iostream>
#include <stdexcept>

namespace VemoSimulator {

namespace {

std::ofstream OpenRequestLog(const std::string& file) {
    std::ofstream log;
    if (file.empty())
        return log;
    log.open(file, std::ios::binary | std::ios::trunc);
    if (!log)
        throw std::runtime_error("cannot write the request log " + file);
    return log;
}

std::string FormatEndpoint(const std::string& address, std::uint16_t port) {
    const bool isVersion6 = address.find(':') != std::string::npos;
    return (isVersion6 ? "[" + address + "]" : address) + ":" + std::to_string(port);
}

void Serve(const Options& options) {
    // Clients leave their connections open: the limit of descriptors rises with the socket layer.
    OSAL::StartSockets();
    std::ofstream requestLog = OpenRequestLog(options.requestLogFile);
    Simulator simulator(options.simulator, requestLog.is_open() ? &requestLog : nullptr, std::cerr);
    const std::uint16_t port = options.port ? *options.port : ReadPortFile();
    Server server({options.address, port, options.bodyLimit}, simulator, std::cerr);
    std::cout << "vemo listens on " << FormatEndpoint(options.address, server.Port()) << std::endl;
    server.Run();
}

} // namespace

int RunProgram(const std::vector<std::string>& arguments, const std::string& calledAs) {
    const auto parsed = ParseOptions(arguments, calledAs);
    if (const auto* const pEnd = std::get_if<EarlyEnd>(&parsed)) {
        std::cout << pEnd->output << std::flush;
        std::cerr << pEnd->error;
        return pEnd->exitCode;
    }
    try {
        Serve(std::get<Options>(parsed));
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "vemo: " << error.what() << "\n";
        return 1;
    }
}

} // namespace VemoSimulator
