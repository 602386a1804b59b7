// Times whole processes of SarvexToolBench on generated files, beside a loop of std::getline over
// the same files, and shows their peak of memory beside the files' size. Prints a table of medians.
//
// usage: bench_bench BENCH [ROUNDS]

#include "benchmarks/Bench/BenchInputs.h"
#include "benchmarks/Client/TimedProcess.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Bench::ProcessFigures;
using Path = std::filesystem::path;

constexpr int fewLines = 10'000;
constexpr int usualLines = 100'000;
constexpr int manyLines = 1'000'000;
constexpr int pageLines = 15'000; // A third of them on two chains: 20,000 measurements.
constexpr int fewLimits = 1'000;

/// A call of the program and the files that it reads.
struct Call {
    std::string name;
    std::vector<std::string> arguments;
    std::vector<Path> inputs;
};

struct Figures {
    std::string name;
    double milliseconds = 0;
    double plainMilliseconds = 0;
    double peakMegabytes = 0;
    double inputMegabytes = 0;
};

double Median(std::vector<double> values) {
    std::nth_element(values.begin(),
                     values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

/// The processor time of a loop over the lines of files.
double MillisecondsToRead(const std::vector<Path>& files) {
    const std::clock_t start = std::clock();
    std::size_t bytes = 0;
    for (const Path& file : files) {
        std::ifstream stream(file);
        for (std::string line; std::getline(stream, line);)
            bytes += line.size() + 1;
    }
    const std::clock_t time = std::clock() - start;
    if (bytes == 0)
        throw std::runtime_error("the inputs are empty");
    return 1e3 * static_cast<double>(time) / CLOCKS_PER_SEC;
}

/// A folder with the inputs of the calls, of any number of lines; it goes with the object.
class Inputs {
public:
    explicit Inputs(int lines)
        : m_folder(std::filesystem::temp_directory_path() /
                   ("sarvex-bench-" + std::to_string(lines))) {
        for (const char* const run : {"old", "new"})
            std::filesystem::create_directories(m_folder / run);
        Bench::WriteTestFile(m_folder / "test.csv", lines);
        Bench::WriteResult(m_folder / "old", lines, 0);
        Bench::WriteResult(m_folder / "new", lines, 1);
        Bench::WriteLimits(m_folder / "limits.csv", fewLimits);
        Bench::WriteLimits(m_folder / "each.csv", lines);
    }
    ~Inputs() { std::filesystem::remove_all(m_folder); }
    Inputs(const Inputs&) = delete;
    Inputs& operator=(const Inputs&) = delete;

    Call Check() const { return {"check", {"check", At("test.csv")}, {At("test.csv")}}; }
    Call Judge(const std::string& name, const std::string& limits) const {
        return {name, {"judge", At("new"), "--limits", At(limits)}, FilesOf({"new"}, limits)};
    }
    Call Compare() const {
        return {"compare", {"compare", At("old"), At("new")}, FilesOf({"old", "new"}, "")};
    }
    Call Report() const {
        return {"report",
                {"report", At("new"), "--limits", At("limits.csv"), "--baseline", At("old"), "-o",
                 At("page.html")},
                FilesOf({"old", "new"}, "limits.csv")};
    }

private:
    std::string At(const std::string& name) const { return (m_folder / name).string(); }

    std::vector<Path> FilesOf(const std::vector<std::string>& runs,
                              const std::string& limits) const {
        std::vector<Path> files;
        for (const std::string& run : runs) {
            files.push_back(m_folder / run / "result.csv");
            files.push_back(m_folder / run / "result.xml");
        }
        if (!limits.empty())
            files.push_back(m_folder / limits);
        return files;
    }

    Path m_folder;
};

Figures Measure(const std::string& program, const Call& call, int rounds) {
    constexpr double megabyte = 1e6;
    constexpr int found = 1; // The exit code of a judgement or a comparison with findings.
    Bench::Command command{{program}, ""};
    command.words.insert(command.words.end(), call.arguments.begin(), call.arguments.end());
    Figures figures;
    figures.name = call.name;
    std::vector<double> times;
    std::vector<double> plainTimes;
    for (int round = 0; round < rounds; ++round) {
        const ProcessFigures process = Bench::FiguresOf(command);
        if (process.exitCode < 0 || process.exitCode > found)
            throw std::runtime_error(call.name + " failed");
        times.push_back(process.processorMilliseconds);
        plainTimes.push_back(MillisecondsToRead(call.inputs));
        figures.peakMegabytes =
            std::max(figures.peakMegabytes, static_cast<double>(process.peakBytes) / megabyte);
    }
    for (const Path& file : call.inputs)
        figures.inputMegabytes += static_cast<double>(std::filesystem::file_size(file)) / megabyte;
    figures.milliseconds = Median(times);
    figures.plainMilliseconds = Median(plainTimes);
    return figures;
}

void PrintMemory(const Figures& figures) {
    const double limit = 10 * figures.inputMegabytes + 10;
    std::printf("| %-38s | %9.1f MB  | %6.2f x %-20s | <= %-4.0f |\n", "  its peak of memory",
                figures.peakMegabytes, figures.peakMegabytes / figures.inputMegabytes,
                "its input files", limit);
}

void PrintCall(const std::string& size, const Figures& figures) {
    constexpr double goalMilliseconds = 1000;
    std::printf("| %-38s | %9.1f ms  | %6.2f x %-20s | <= %-4.0f |\n",
                (figures.name + ", " + size).c_str(), figures.milliseconds,
                figures.milliseconds / figures.plainMilliseconds, "a getline loop",
                goalMilliseconds);
    PrintMemory(figures);
}

/// The time on ten times as many lines as before.
void PrintGrowth(const char* size, const Figures& before, const Figures& after) {
    std::printf("| %-38s | %9.1f ms  | %6.2f x %-20s | %-7s |\n",
                ("  " + std::string(size)).c_str(), after.milliseconds,
                after.milliseconds / before.milliseconds, "a tenth of the lines", "10");
}

std::vector<Call> CallsOn(const Inputs& inputs) {
    return {inputs.Check(), inputs.Judge("judge", "limits.csv"),
            inputs.Judge("judge, a limit a line", "each.csv"), inputs.Compare()};
}

/// The figures of each call on files of so many lines.
std::vector<Figures> MeasureAll(const std::string& program, int lines, int rounds) {
    const Inputs inputs(lines);
    std::vector<Figures> figures;
    for (const Call& call : CallsOn(inputs))
        figures.push_back(Measure(program, call, rounds));
    return figures;
}

void Run(const std::string& program, int rounds) {
    const std::vector<Figures> few = MeasureAll(program, fewLines, rounds);
    const std::vector<Figures> usual = MeasureAll(program, usualLines, rounds);
    const std::vector<Figures> many = MeasureAll(program, manyLines, 1);
    for (std::size_t index = 0; index < usual.size(); ++index) {
        PrintCall("100,000 lines", usual[index]);
        PrintGrowth("100,000 lines", few[index], usual[index]);
        PrintGrowth("1,000,000 lines", usual[index], many[index]);
        PrintMemory(many[index]);
    }
    const Inputs page(pageLines);
    PrintCall("20,000 measurements", Measure(program, page.Report(), rounds));
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount < 2) {
        std::fprintf(stderr, "usage: bench_bench BENCH [ROUNDS]\n");
        return 1;
    }
    try {
        Run(arguments[1], argumentCount > 2 ? std::stoi(arguments[2]) : 5);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_bench: %s\n", error.what());
        return 1;
    }
    return 0;
}
