#include "tests/EndToEnd/BenchRun/PowerTests.h"

#include <chrono>
#include <thread>

namespace EndToEnd {

namespace {

constexpr const char* client = "SarvexToolClientWithoutPauses";

} // namespace

PowerTests::PowerTests() {
    m_bench.AddProgram(client, client);
}

Results PowerTests::ResultsIn(const std::string& directory) const {
    return {Read(directory + "/result.csv"), Read(directory + "/result.xml")};
}

void PowerTests::Command(const Simulator& daemon, const std::vector<std::string>& arguments) const {
    m_bench.SetPort(daemon.Port());
    Process(Path(ExecutableName(client)), arguments, m_bench.Directory()).Wait();
}

Results PowerTests::RunAlone(const std::string& testFile) const {
    for (const char* const name : {"result.csv", "result.xml"})
        std::filesystem::remove(Path(name));
    const Simulator daemon;
    Command(daemon, {"-wifi-test-by-file", testFile});
    return ResultsIn(".");
}

std::vector<std::string> PowerTests::NewRun(const Simulator& daemon, const std::string& testFile,
                                            const std::string& directory,
                                            const std::vector<std::string>& options) const {
    std::vector<std::string> arguments = {"run",      testFile,
                                          "--out",    directory,
                                          "--daemon", "127.0.0.1:" + daemon.Port(),
                                          "--client", Path(ExecutableName(client))};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return arguments;
}

std::unique_ptr<Process> PowerTests::Start(const std::vector<std::string>& arguments) const {
    return std::make_unique<Process>(BenchPath(), arguments, m_bench.Directory());
}

std::string BenchPath() {
    return TestProgramDirectory() + "/" + ExecutableName("SarvexToolBench");
}

std::string DependentLines(std::size_t lines) {
    std::string file = "Band,Chains,Bandwidth,Channel,Bandwidth Mode,Rate\n"
                       "6,AB,80,101,EHT,EHT-MCS5\n";
    for (std::size_t line = 1; line < lines; ++line) {
        const std::string channel = std::to_string(1 + 4 * ((7 * line) % 58));
        const std::string rate = "EHT-MCS" + std::to_string((5 * line) % 14);
        const std::string bandwidth = std::to_string(20 << (line % 5));
        const std::string chains = line % 3 == 0 ? "A" : line % 3 == 1 ? "AB" : "B";
        const std::string cells[] = {"-,-,-," + channel + ",-,-", "-,-,-,-,-," + rate,
                                     "-,-," + bandwidth + ",-,-,-", "-," + chains + ",-,-,-,-",
                                     "-,-,-,-,-,-"};
        file += cells[line % 5] + "\n";
    }
    return file;
}

std::size_t CountHits(const std::string& text, const std::string& word) {
    std::size_t count = 0;
    for (std::size_t hit = text.find(word); hit != std::string::npos;
         hit = text.find(word, hit + 1))
        ++count;
    return count;
}

bool WaitForLines(const Process& run, const std::string& journal, std::size_t lines) {
    while (CountHits(TestSupport::ReadBytes(journal), "\n") < lines) {
        if (run.HasEnded())
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace EndToEnd
