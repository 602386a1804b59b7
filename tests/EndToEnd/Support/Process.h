#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace EndToEnd {

/// What a program did from its start to its end.
struct ProcessResult {
    /// All 32 bits on Windows, the exit status's eight on Linux; -1 when the program was killed.
    int exitCode = -1;
    /// As written, line ends of the platform included.
    std::string out;
    std::string err;
    double seconds = 0;
    /// Largest resident size; 0 where the system does not tell.
    std::uint64_t peakBytes = 0;
};

/// A real program, started in a directory of its own; its output goes to files there.
class Process {
public:
    /// Starts the program; arguments arrive in it as they are given here.
    Process(const std::string& program, const std::vector<std::string>& arguments,
            const std::string& workingDirectory);
    /// Kills the program if it still runs.
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Waits for the end; kills the program, and says so in exitCode, after the given time.
    ProcessResult Wait(double timeoutSeconds = 60);

    void Kill();

    /// What the program has written on standard output so far.
    std::string OutSoFar() const;

private:
    struct System;
    std::unique_ptr<System> m_system;
};

/// Starts a program and waits for its end.
ProcessResult Run(const std::string& program, const std::vector<std::string>& arguments,
                  const std::string& workingDirectory);

/// Programs started from now on do not inherit the socket, which would keep its port in use.
void KeepFromChildren(std::uint64_t nativeSocket);

/// "name.exe" on Windows, "name" elsewhere.
std::string ExecutableName(const std::string& name);

/// The directory of the running test program, without separator at its end.
std::string TestProgramDirectory();

/// Text as the platform's text mode writes it: a line feed becomes CR LF on Windows.
std::string TextMode(const std::string& text);

} // namespace EndToEnd
