#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace EndToEnd {

/// What a program did from its start to its end.
struct ProcessResult {
    /// All 32 bits on Windows, the exit status's eight on Linux; -1 when Wait killed the program
    /// and, on Linux, when anything else did.
    int exitCode = -1;
    /// Wait killed the program because it took too long.
    bool timedOut = false;
    /// As written, line ends of the platform included.
    std::string out;
    std::string err;
    double seconds = 0;
    /// Largest resident size, seen every millisecond on Linux and every 50 ms on Windows; 0 when
    /// the program ended before.
    std::uint64_t peakBytes = 0;
};

/// A way in which the system ends a running program.
struct Interruption {
    const char* name;
    int number;
};

/// All that this system has.
std::vector<Interruption> Interruptions();

/// A real program, started in a directory of its own; its output goes to files there. It inherits
/// nothing else that this program has open, so that several threads may start programs.
class Process {
public:
    /// What standard output is.
    enum class Output {
        /// A file, which ProcessResult shows.
        Kept,
        /// A pipe that nobody reads any more.
        BrokenPipe,
        /// A pipe that takes four kilobytes, which nobody reads before ReadOut.
        Pipe
    };

    /// What a program is started with beside its arguments.
    struct Start {
        Output output = Output::Kept;
        /// A file that standard input reads; nothing to read when it is empty.
        std::string inputFile;
        /// Whether the arguments are in UTF-8 also where the system's own code page is another.
        bool areArgumentsUtf8 = false;
    };

    /// Starts the program; arguments arrive in it as they are given here.
    Process(const std::string& program, const std::vector<std::string>& arguments,
            const std::string& workingDirectory, const Start& start);
    Process(const std::string& program, const std::vector<std::string>& arguments,
            const std::string& workingDirectory)
        : Process(program, arguments, workingDirectory, Start()) {}
    /// Kills the program if it still runs.
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Waits for the end; kills the program, and says so in exitCode, when it has run for the given
    /// time. That is for programs that never end: on a busy machine everything takes long.
    ProcessResult Wait(double timeoutSeconds = 240);

    void Kill();

    /// Asks the program to end and waits some seconds for that; kills it where programs without a
    /// window cannot be asked.
    void End();

    void Interrupt(const Interruption& interruption);

    bool HasEnded() const;

    /// Keeps the program from running until GoOn; false where the system cannot.
    bool Halt();
    void GoOn();

    /// The system's number of the process.
    std::uint64_t Id() const;

    /// What the program has written on standard output so far.
    std::string OutSoFar() const;

    /// Reads an Output::Pipe until the program has closed it; to be called once.
    std::string ReadOut();

    /// What the program has written on standard error so far.
    std::string ErrSoFar() const;

private:
    struct System;
    std::unique_ptr<System> m_system;
};

/// Starts a program and waits for its end.
ProcessResult Run(const std::string& program, const std::vector<std::string>& arguments,
                  const std::string& workingDirectory);

/// The numbers of the running programs whose executable files are in the folder.
std::vector<std::uint64_t> ProgramsIn(const std::string& folder);

/// Ends a program at once; does nothing when there is none of the number.
void KillProgram(std::uint64_t id);

/// Programs started from now on do not inherit the socket, which would keep its port in use.
void KeepFromChildren(std::uint64_t nativeSocket);

/// Held while a program starts: for a moment it has everything open that this one has.
std::mutex& StartMutex();

/// What exitCode is of a program that Kill has ended.
int KilledStatus();

/// What exitCode is of a program that ends with this code: Linux keeps eight bits, and every code
/// that does not fit ends as 255 there.
int ExitStatus(int code);

/// "name.exe" on Windows, "name" elsewhere.
std::string ExecutableName(const std::string& name);

/// The directory of the running test program, without separator at its end.
std::string TestProgramDirectory();

/// Text as the platform's text mode writes it: a line feed becomes CR LF on Windows.
std::string TextMode(const std::string& text);

} // namespace EndToEnd
