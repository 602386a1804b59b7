// Times whole processes that make one exchange with a peer in this program: the client, a bare
// program of system calls, curl and, where one is given, a former client. Prints a table of medians
// and ratios.
//
// usage: exchange_bench CLIENT BARE [ROUNDS [FORMER]]

#include "benchmarks/Client/AnsweringPeer.h"
#include "benchmarks/Client/TimedProcess.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace {

using Bench::AnsweringPeer;
using Bench::Command;

double Median(std::vector<double> values) {
    std::nth_element(values.begin(),
                     values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

/// Runs the commands in turn, so that a drift of the machine's speed meets all alike; returns the
/// median milliseconds of each.
std::vector<double> TimeInTurn(const std::vector<Command>& commands, int rounds) {
    std::vector<std::vector<double>> times(commands.size());
    for (int round = -3; round < rounds; ++round) {
        for (std::size_t index = 0; index < commands.size(); ++index) {
            const double milliseconds = Bench::MillisecondsOf(commands[index]);
            if (round >= 0)
                times[index].push_back(milliseconds);
        }
    }
    std::vector<double> medians;
    for (const auto& values : times)
        medians.push_back(Median(values));
    return medians;
}

void PrintRow(const char* what, double figure, const char* unit, double ratio, const char* of,
              double limit) {
    std::printf("| %-38s | %9.3f %-3s | %6.2f x %-20s | <= %.2f |\n", what, figure, unit, ratio, of,
                limit);
}

/// The client's own directory, with a port file for the peer.
std::string StageClient(const std::string& client, const std::string& port,
                        const std::string& folder = "client") {
    const std::filesystem::path directory =
        std::filesystem::temp_directory_path() / ("sarvex-bench-" + port) / folder;
    std::filesystem::create_directories(directory);
    std::filesystem::copy_file(client, directory / "SarvexToolClient",
                               std::filesystem::copy_options::overwrite_existing);
    std::ofstream(directory / "Socket.cfg") << port;
    return (directory / "SarvexToolClient").string();
}

std::string CurlUrl(const std::string& port) {
    return "http://127.0.0.1:" + port + "/api/oemtools/command";
}

/// former is empty where there is no former client to compare with.
void BenchShortExchange(const std::string& client, const std::string& bare, int rounds,
                        const std::string& former) {
    const AnsweringPeer peer("Sarvex tool INFO\nstopped\nSarvex tool RETURN CODE\n0\nDone");
    std::vector<Command> commands{
        Command{{StageClient(client, peer.Port()), "-wifi-stop"}, ""},
        Command{{bare, peer.Port()}, AnsweringPeer::Request},
        Command{{"curl", "-s", "-d", "CLI -1 -vemo  -wifi-stop", CurlUrl(peer.Port())}, ""}};
    if (!former.empty())
        commands.push_back(Command{{StageClient(former, peer.Port(), "former"), "-wifi-stop"}, ""});
    const std::vector<double> medians = TimeInTurn(commands, rounds);
    PrintRow("one exchange", medians[0], "ms", medians[0] / medians[1], "bare system calls", 1.4);
    PrintRow("one exchange", medians[0], "ms", medians[0] / medians[2], "curl", 0.2);
    if (former.empty())
        return;
    PrintRow("one exchange", medians[0], "ms", medians[0] / medians[3], "former client", 1);
    const double above = medians[0] - medians[1];
    PrintRow("its time above the bare one", above, "ms", above / (medians[3] - medians[1]),
             "former client", 0.67);
}

/// former is empty where there is no former client to compare with.
void BenchLongAnswer(const std::string& client, int rounds, const std::string& former) {
    std::string answer = "Sarvex tool INFO\n";
    while (answer.size() < (64 << 20))
        answer += "Target Power: Band 5 Bandwidth 80 Channel 36 Chain A (1) 17.5 dBm\n";
    const AnsweringPeer peer(answer + "Done");
    std::vector<Command> commands{
        Command{{StageClient(client, peer.Port()), "-wifi-stop"}, ""},
        Command{{"curl", "-s", "-d", "CLI -1 -vemo  -wifi-stop", CurlUrl(peer.Port())}, ""}};
    if (!former.empty())
        commands.push_back(Command{{StageClient(former, peer.Port(), "former"), "-wifi-stop"}, ""});
    const std::vector<double> medians = TimeInTurn(commands, rounds);
    const char* const what = "answer of 64 MiB into a pipe";
    PrintRow(what, medians[0], "ms", medians[0] / medians[1], "curl", 3.5);
    if (!former.empty())
        PrintRow(what, medians[0], "ms", medians[0] / medians[2], "former client", 1);
}

void PrintSize(const std::string& client) {
    const double mebibytes = static_cast<double>(std::filesystem::file_size(client)) / (1 << 20);
    std::printf("| %-38s | %9.3f %-3s | %-29s | <= %.2f |\n", "Linux executable", mebibytes, "MiB",
                "", 2.5);
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: exchange_bench CLIENT BARE [ROUNDS [FORMER]]\n");
        return 2;
    }
    const int rounds = argc > 3 ? std::stoi(argv[3]) : 1000;
    const std::string former = argc > 4 ? argv[4] : "";
    BenchShortExchange(argv[1], argv[2], rounds, former);
    BenchLongAnswer(argv[1], std::max(3, rounds / 20), former);
    PrintSize(argv[1]);
    return 0;
}
