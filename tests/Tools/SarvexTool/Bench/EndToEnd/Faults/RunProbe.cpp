#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/RunProbe.h"

#include "tests/EndToEnd/Support/Simulator.h"

#include <algorithm>
#include <chrono>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace Bench {

using EndToEnd::Process;
using EndToEnd::ProcessResult;

void WaitUntil(const std::string& what, const std::function<bool()>& hasHappened) {
    constexpr int attempts = 24'000;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (hasHappened())
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    throw std::runtime_error("never happened: " + what);
}

char LetterOf(const std::string& command) {
    const auto holds = [&command](const char* option) {
        return command.find(option) != std::string::npos;
    };
    if (holds("-wifi-start"))
        return 'S';
    if (holds("-wifi-stop"))
        return 'x';
    if (holds("-wifi-get-mac-type"))
        return 'm';
    if (holds("-wifi-get-mcc"))
        return 'c';
    return holds("-wifi-") ? 'r' : 'f';
}

std::vector<JsonFields> JsonLines(const std::string& text) {
    std::vector<JsonFields> objects;
    std::istringstream lines(text);
    // The last line may be being written.
    for (std::string line; std::getline(lines, line) && !lines.eof();)
        objects.push_back(JsonFields::Parse(line));
    return objects;
}

bool FitsExchanges(const std::string& letters, const std::string& pattern) {
    if (!pattern.ends_with('+'))
        return letters == pattern;
    const std::string least = pattern.substr(0, pattern.size() - 1);
    return letters.starts_with(least) &&
           letters.find_first_not_of(least.back(), least.size()) == std::string::npos;
}

std::string BenchPath() {
    return ProgramPath("SarvexToolBench");
}

std::string ProgramPath(const std::string& name) {
    return EndToEnd::TestProgramDirectory() + "/" + EndToEnd::ExecutableName(name);
}

// The daemon.

void RestartableDaemon::Start(const std::vector<std::string>& options) {
    ++m_starts;
    std::vector<std::string> arguments{"--port",        std::to_string(m_reserved.Number()),
                                       "--noise",       "0",
                                       "--request-log", m_directory.Path(std::to_string(m_starts))};
    arguments.insert(arguments.end(), options.begin(), options.end());
    m_process = std::make_unique<Process>(EndToEnd::SimulatorPath(), arguments, m_directory.Path());
    WaitUntil("the simulated daemon listens",
              [this] { return m_process->OutSoFar().find('\n') != std::string::npos; });
}

std::vector<JsonFields> RestartableDaemon::Requests(int start) const {
    return JsonLines(TestSupport::ReadBytes(m_directory.Path(std::to_string(start))));
}

std::string RestartableDaemon::Exchanges() const {
    std::string letters;
    for (int start = 1; start <= m_starts; ++start) {
        letters += start > 1 ? "|" : "";
        for (const JsonFields& request : Requests(start))
            letters += LetterOf(request.Text("command"));
    }
    return letters;
}

std::vector<std::string> RestartableDaemon::Commands() const {
    std::vector<std::string> commands;
    for (int start = 1; start <= m_starts; ++start) {
        for (const JsonFields& request : Requests(start))
            commands.push_back(request.Text("command"));
    }
    return commands;
}

void RestartableDaemon::WaitForExchanges(const std::string& end) const {
    WaitUntil("the daemon has got ..." + end, [&] { return Exchanges().ends_with(end); });
}

// The run.

RunProbe::RunProbe() {
    Write("test.csv", "Band,Chains,Bandwidth,Channel\n5,AB,20,36\n-,-,-,40\n");
}

std::vector<std::string> RunProbe::Arguments(const std::string& daemon,
                                             const std::vector<std::string>& options) const {
    std::vector<std::string> arguments{"run", "test.csv", "--out", "run", "--daemon", daemon};
    if (std::find(options.begin(), options.end(), "--client") == options.end())
        arguments.insert(arguments.end(),
                         {"--client", ProgramPath("SarvexToolClientWithoutPauses")});
    arguments.insert(arguments.end(), options.begin(), options.end());
    return arguments;
}

std::unique_ptr<Process> RunProbe::Start(const std::string& daemon,
                                         const std::vector<std::string>& options) const {
    return std::make_unique<Process>(BenchPath(), Arguments(daemon, options), m_directory.Path());
}

ProcessResult RunProbe::Run(const std::string& daemon,
                            const std::vector<std::string>& options) const {
    return Start(daemon, options)->Wait();
}

ProcessResult RunProbe::RunBench(const std::vector<std::string>& arguments) const {
    return EndToEnd::Run(BenchPath(), arguments, m_directory.Path());
}

std::vector<JsonFields> RunProbe::Lines(const std::string& name) const {
    return JsonLines(TestSupport::ReadBytes(Path("run/" + name)));
}

void RunProbe::WaitForAnswer(const RestartableDaemon& daemon) const {
    const std::string letters = daemon.Exchanges();
    const auto stops = std::count(letters.begin(), letters.end(), 'x');
    WaitUntil("the run has the answer to its stop", [&] {
        const std::vector<JsonFields> lines = Lines("exchanges.jsonl");
        return std::count_if(lines.begin(), lines.end(), [](const JsonFields& line) {
                   return LetterOf(line.Text("command")) == 'x' && line.Text("end") == "answered";
               }) >= stops;
    });
}

std::string RunProbe::Outcomes() const {
    std::string text;
    for (const JsonFields& line : Lines("journal.jsonl")) {
        text += (text.empty() ? "" : "; ") + std::to_string(line.Line("line")) + " " +
                line.Object("a").Text("outcome") + ", " + line.Object("b").Text("outcome");
    }
    return text;
}

std::string RunProbe::TextOf(std::uint32_t line) const {
    for (const JsonFields& entry : Lines("journal.jsonl")) {
        if (entry.Line("line") == line && entry.Object("a").Has("text"))
            return entry.Object("a").Text("text");
    }
    return "";
}

JsonFields RunProbe::Facts() const {
    return JsonFields::Parse(TestSupport::ReadBytes(Path("run/run.json")));
}

std::string RunProbe::Result() const {
    std::string text = TestSupport::ReadBytes(Path("run/result.csv"));
    std::erase(text, '\r');
    return text;
}

} // namespace Bench
