#pragma once

#include "tests/EndToEnd/Support/Process.h"
#include "tests/EndToEnd/Support/ReservedPort.h"
#include "tests/EndToEnd/Support/Simulator.h"
#include "tests/Support/Files.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace VemoSimulator {

using EndToEnd::SimulatorPath;

/// The real program, listening; its working directory is a new one. It is ended with the object
/// unless it has ended by then.
class RunningSimulator {
public:
    /// A name in the working directory, and the content.
    using File = std::pair<std::string, std::string>;

    /// Adds a port to the arguments unless they name one. The files are there when the program
    /// starts. Returns when it is ready.
    explicit RunningSimulator(std::vector<std::string> arguments = {},
                              const std::vector<File>& files = {});
    ~RunningSimulator() { m_process.End(); }
    RunningSimulator(const RunningSimulator&) = delete;
    RunningSimulator& operator=(const RunningSimulator&) = delete;

    std::uint16_t Port() const { return m_port; }

    /// Sends "-exit" and waits for the program's end.
    EndToEnd::ProcessResult End();

    /// Waits for the program's end.
    EndToEnd::ProcessResult Wait() { return m_process.Wait(); }

    /// A file of the working directory.
    std::string ReadFile(const std::string& name) const {
        return TestSupport::ReadBytes(m_directory.Path(name));
    }

private:
    struct Folder : TestSupport::TemporaryDirectory {
        explicit Folder(const std::vector<File>& files) {
            for (const File& file : files)
                Create(file.first, file.second);
        }
    };

    Folder m_directory;
    EndToEnd::ReservedPort m_reserved;
    EndToEnd::Process m_process;
    std::uint16_t m_port = 0;
};

/// Waits until the program has written a line on standard output; returns it without its end.
/// Throws when that takes too long.
std::string WaitForLine(const EndToEnd::Process& process);

/// The port in the line that the program writes when it is ready.
std::uint16_t PortIn(const std::string& readyLine);

} // namespace VemoSimulator
