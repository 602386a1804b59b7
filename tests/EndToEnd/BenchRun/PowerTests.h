#pragma once

#include "tests/EndToEnd/Support/Bench.h"
#include "tests/EndToEnd/Support/Simulator.h"

#include <memory>
#include <string>
#include <vector>

namespace EndToEnd {

/// The two files that a power test writes; empty where there is none.
struct Results {
    std::string csv;
    std::string xml;

    bool operator==(const Results&) const = default;
};

/// A folder in which power tests are run: by the client alone, and under supervision. The client is
/// the one without pauses.
class PowerTests {
public:
    PowerTests();

    void Write(const std::string& name, const std::string& content) const {
        m_bench.Write(name, content);
    }
    std::string Read(const std::string& name) const { return m_bench.Read(name); }
    std::string Path(const std::string& name) const { return m_bench.Path(name); }
    Results ResultsIn(const std::string& directory) const;

    /// Lets the client send a command of its own.
    void Command(const Simulator& daemon, const std::vector<std::string>& arguments) const;

    /// What the client alone writes with a daemon that has just been started.
    Results RunAlone(const std::string& testFile) const;

    /// The arguments of a new run.
    std::vector<std::string> NewRun(const Simulator& daemon, const std::string& testFile,
                                    const std::string& directory,
                                    const std::vector<std::string>& options = {}) const;

    /// Starts the program that supervises, with any arguments.
    std::unique_ptr<Process> Start(const std::vector<std::string>& arguments) const;

    ProcessResult Supervise(const std::vector<std::string>& arguments) const {
        return Start(arguments)->Wait();
    }

private:
    Bench m_bench;
};

/// The program that supervises.
std::string BenchPath();

/// A test file of so many lines, most of whose cells are left out: each power depends on the lines
/// before. None of the settings are those of a daemon that has just been started.
std::string DependentLines(std::size_t lines);

std::size_t CountHits(const std::string& text, const std::string& word);

/// Waits until a run has so many finished lines; false when it has ended before.
bool WaitForLines(const Process& run, const std::string& journal, std::size_t lines);

} // namespace EndToEnd
