#pragma once

#include "tests/EndToEnd/Support/Process.h"
#include "tests/EndToEnd/Support/ReservedPort.h"
#include "tests/Support/Files.h"

#include "Tools/SarvexTool/Bench/Files/JsonFields.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Bench {

/// Waits for an event of another program. Throws std::runtime_error when it never comes.
void WaitUntil(const std::string& what, const std::function<bool()>& hasHappened);

/// The letter of a command: f the first one, m and c the questions for MAC type and country code, S
/// a start, x a stop, r settings alone.
char LetterOf(const std::string& command);

/// The real simulated daemon on a port of its own; it can be killed and started again there.
class RestartableDaemon {
public:
    /// Starts it and waits until it listens.
    void Start(const std::vector<std::string>& options = {});
    /// Ends it without a word; its connections break.
    void Kill() { m_process.reset(); }

    std::uint16_t Port() const { return m_reserved.Number(); }
    std::string Address() const { return "127.0.0.1:" + std::to_string(Port()); }
    /// The letters of all commands so far, and a bar for each further start.
    std::string Exchanges() const;
    /// The commands of all starts, in order.
    std::vector<std::string> Commands() const;
    /// Waits until the letters end so.
    void WaitForExchanges(const std::string& end) const;

private:
    std::vector<JsonFields> Requests(int start) const;

    TestSupport::TemporaryDirectory m_directory;
    EndToEnd::ReservedPort m_reserved;
    std::unique_ptr<EndToEnd::Process> m_process;
    int m_starts = 0;
};

/// A run of the real programs, with the client without pauses, in a directory of its own.
class RunProbe {
public:
    /// The test file of all runs has two lines, 2 and 3, for both chains.
    RunProbe();

    std::string Path(const std::string& name) const { return m_directory.Path(name); }
    void Write(const std::string& name, const std::string& content) const {
        TestSupport::WriteBytes(Path(name), content);
    }

    /// Starts SarvexToolBench run with the test file and the folder "run", and with the client
    /// without pauses if the options name none.
    std::unique_ptr<EndToEnd::Process> Start(const std::string& daemon,
                                             const std::vector<std::string>& options = {}) const;
    /// Does so and waits for its end.
    EndToEnd::ProcessResult Run(const std::string& daemon,
                                const std::vector<std::string>& options = {}) const;
    /// Starts SarvexToolBench with any arguments.
    EndToEnd::ProcessResult RunBench(const std::vector<std::string>& arguments) const;

    std::vector<std::string> Arguments(const std::string& daemon,
                                       const std::vector<std::string>& options) const;

    /// Waits until the run has the answer to the last stop that the daemon has got. The daemon's
    /// log has a command before it is answered.
    void WaitForAnswer(const RestartableDaemon& daemon) const;

    /// What the journal tells: "2 measured, measured; 3 refused, refused".
    std::string Outcomes() const;
    /// The text that the journal has for chain A of a line.
    std::string TextOf(std::uint32_t line) const;
    /// The objects of a file of JSON lines in the run's folder.
    std::vector<JsonFields> Lines(const std::string& name) const;
    /// run.json
    JsonFields Facts() const;
    /// result.csv, with line feeds alone.
    std::string Result() const;

private:
    TestSupport::TemporaryDirectory m_directory;
};

/// The path of a program of the build, and that of SarvexToolBench.
std::string ProgramPath(const std::string& name);
std::string BenchPath();

/// The objects in a text of JSON lines.
std::vector<JsonFields> JsonLines(const std::string& text);

/// Whether the letters are those of the pattern. A plus sign at its end stands for any number of
/// further letters like the last one.
bool FitsExchanges(const std::string& letters, const std::string& pattern);

} // namespace Bench
