// Times whole supervised runs with the simulated daemon and the client without its pauses, in turn
// with that client alone, and watches runs of many lines. All programs may open few files. Prints a
// table.
//
// usage: run_bench BENCH CLIENT [ROUNDS]

#include "benchmarks/Client/TimedProcess.h"
#include "tests/EndToEnd/Support/Posix/ProcessUse.h"
#include "tests/EndToEnd/Support/Simulator.h"

#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <future>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr int openFiles = 256;
/// As many as the client alone can run with so few open files.
constexpr int fewLines = 100;
constexpr int usualLines = 10'000;
constexpr int manyLines = 40'000;

double Median(std::vector<double> values) {
    std::nth_element(values.begin(),
                     values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

/// For the programs that this one starts from now on. The hard limit is set too, because they raise
/// the other one to it.
void LimitOpenFiles() {
    const rlimit limit{openFiles, openFiles};
    if (::setrlimit(RLIMIT_NOFILE, &limit) != 0)
        throw std::runtime_error("the limit of open files cannot be set");
}

std::string Lines(int count) {
    constexpr std::array<const char*, 3> chains{"A", "B", "AB"};
    constexpr int rates = 12;
    std::string text = "Band,Chains,Bandwidth,Channel,Bandwidth Mode,Rate\n";
    for (int line = 0; line < count; ++line)
        text += std::string("5,") + chains.at(static_cast<std::size_t>(line) % chains.size()) +
                ",20,36,HE,MCS" + std::to_string(line % rates) + "\n";
    return text;
}

/// What a long run took.
struct LongRun {
    double seconds = 0;
    std::uint64_t bytesWhileMeasuring = 0;
    std::uint64_t bytesAtMost = 0;
    std::size_t sockets = 0;
};

/// A daemon, and a folder with a client for it and test files, which is the current directory.
class Stage {
public:
    Stage(std::string bench, const std::string& client) : m_bench(std::move(bench)) {
        std::filesystem::copy_file(client, m_folder.Path("SarvexToolClient"));
        m_folder.Create("Socket.cfg", m_daemon.Port());
        for (const int lines : {1, fewLines, usualLines, manyLines})
            m_folder.Create(TestFile(lines), Lines(lines));
        std::filesystem::current_path(m_folder.Path());
    }
    ~Stage() { std::filesystem::current_path("/"); }
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    /// In a folder below this one.
    double MillisecondsSupervised(int lines, int segment, const std::string& folder = ".") const {
        const std::string out = folder + "/run-bench-" + m_daemon.Port();
        // Problems of the test file would fill the screen.
        Bench::Command command{{"sh", "-c", "exec \"$@\" 2>/dev/null", "sh", m_bench}, ""};
        for (const std::string& argument : Arguments(lines, segment, out))
            command.words.push_back(argument);
        const double milliseconds = Bench::MillisecondsOf(command);
        std::filesystem::remove_all(out);
        return milliseconds;
    }

    double MillisecondsAlone(int lines, int times) const {
        double sum = 0;
        for (int time = 0; time < times; ++time)
            sum += Bench::MillisecondsOf(
                {{"./SarvexToolClient", "-wifi-test-by-file", TestFile(lines)}, ""});
        return sum;
    }

    LongRun RunLong(int lines) const {
        EndToEnd::Process program(m_bench, Arguments(lines, fewLines, "long"), m_folder.Path(), {});
        constexpr double longest = 3600;
        auto end = std::async(std::launch::async, [&program] { return program.Wait(longest); });
        LongRun run;
        while (end.wait_for(std::chrono::milliseconds(100)) == std::future_status::timeout) {
            const auto use = EndToEnd::UseOf(program.Id());
            if (!use || !use->hasChildren)
                continue;
            run.bytesWhileMeasuring = std::max(run.bytesWhileMeasuring, use->residentBytes);
            run.sockets = std::max(run.sockets, use->sockets);
        }
        const EndToEnd::ProcessResult result = end.get();
        if (result.exitCode != 0)
            throw std::runtime_error("a long run failed: " + result.err);
        run.seconds = result.seconds;
        run.bytesAtMost = result.peakBytes;
        std::filesystem::remove_all("long");
        return run;
    }

private:
    static std::string TestFile(int lines) { return "test-" + std::to_string(lines) + ".csv"; }

    std::vector<std::string> Arguments(int lines, int segment, const std::string& out) const {
        return {"run",       TestFile(lines),
                "--out",     out,
                "--daemon",  "127.0.0.1:" + m_daemon.Port(),
                "--client",  "SarvexToolClient",
                "--segment", std::to_string(segment)};
    }

    std::string m_bench;
    TestSupport::TemporaryDirectory m_folder;
    EndToEnd::Simulator m_daemon;
};

/// Milliseconds of runs that differ in one thing each.
struct Times {
    std::vector<double> supervised;
    std::vector<double> supervisedLine;
    std::vector<double> supervisedStarts;
    std::vector<double> inMemory;
    std::vector<double> alone;
    std::vector<double> aloneLine;
};

Times Measure(const Stage& stage, int rounds) {
    Times times;
    for (int round = 0; round < rounds; ++round) {
        times.supervised.push_back(stage.MillisecondsSupervised(fewLines, fewLines));
        times.supervisedLine.push_back(stage.MillisecondsSupervised(1, 1));
        times.supervisedStarts.push_back(stage.MillisecondsSupervised(fewLines, 1));
        times.inMemory.push_back(stage.MillisecondsSupervised(fewLines, fewLines, "/dev/shm"));
        times.alone.push_back(stage.MillisecondsAlone(fewLines, 1));
        times.aloneLine.push_back(stage.MillisecondsAlone(1, fewLines));
    }
    return times;
}

void PrintAdded(const char* what, double supervised, double alone, const char* goal) {
    std::printf("| %-38s | %9.3f ms  | alone %6.3f, added %.3f ms  | %-7s |\n", what, supervised,
                alone, supervised - alone, goal);
}

void PrintShortRuns(const Times& times) {
    constexpr double more = fewLines - 1;
    const double supervised = Median(times.supervised);
    const double alone = Median(times.alone);
    const double startsAlone = Median(times.aloneLine);
    PrintAdded("one more line of a supervised run",
               (supervised - Median(times.supervisedLine)) / more,
               (alone - startsAlone / fewLines) / more, "");
    std::printf("| %-38s | %9.3f ms  | %-29s | %-7s |\n", "  its files on the disk, not in memory",
                (supervised - Median(times.inMemory)) / fewLines, "", "");
    PrintAdded("one more segment of it", (Median(times.supervisedStarts) - supervised) / more,
               (startsAlone - alone) / more, "<= 5.00");
}

void PrintLongRuns(const Stage& stage) {
    constexpr double perSecond = 1e3;
    constexpr double megabyte = 1e6;
    const LongRun usual = stage.RunLong(usualLines);
    const LongRun many = stage.RunLong(manyLines);
    const double usualLine = perSecond * usual.seconds / usualLines;
    const double line = perSecond * many.seconds / manyLines;
    std::printf("| %-38s | %9.3f ms  | %6.2f x %-20s | %-7s |\n", "a line of 40,000", line,
                line / usualLine, "a line of 10,000", "1");
    std::printf("| %-38s | %9.1f MB  | %6.2f x %-20s | %-7s |\n", "  memory while it measures",
                static_cast<double>(many.bytesWhileMeasuring) / megabyte,
                static_cast<double>(many.bytesWhileMeasuring) /
                    static_cast<double>(usual.bytesWhileMeasuring),
                "with 10,000", "1");
    std::printf("| %-38s | %9.1f MB  | %6.2f x %-20s | %-7s |\n", "  peak of memory, at its end",
                static_cast<double>(many.bytesAtMost) / megabyte,
                static_cast<double>(many.bytesAtMost) / static_cast<double>(usual.bytesAtMost),
                "with 10,000", "4");
    std::printf("| %-38s | %9zu     | %6zu with %-18s | %-7s |\n", "  sockets at a time",
                many.sockets, usual.sockets, "10,000", "");
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: run_bench BENCH CLIENT [ROUNDS]\n");
        return 2;
    }
    try {
        const int rounds = argc > 3 ? std::stoi(argv[3]) : 15;
        const std::string bench = std::filesystem::absolute(argv[1]).string();
        const std::string client = std::filesystem::absolute(argv[2]).string();
        const Stage stage(bench, client);
        LimitOpenFiles();
        PrintShortRuns(Measure(stage, rounds));
        std::fflush(stdout);
        PrintLongRuns(stage);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "run_bench: %s\n", error.what());
        return 1;
    }
    return 0;
}
