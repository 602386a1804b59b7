#pragma once

#include "Modules/xFramework/OSAL/Handle.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace OSAL {

/// Separates the names of a path: a backslash on Windows, a slash elsewhere.
extern const char PathSeparator;

/// What an executable's file name has after its base name. The Windows form ends in a blank, which
/// the system drops again when it resolves the path.
extern const char* const ExecutableSuffix;

struct ProcessInformation {
    OwnedHandle process;
    OwnedHandle thread;
};

/// A child process whose output can be read.
struct Pipe;

/// To be called once, before anything is opened: makes sure that no file or socket takes the place
/// of a standard stream that the caller of the program has closed, and that writing to one whose
/// reader has gone fails and does not end the process. Children are started as without it.
void PrepareStandardStreams();

/// Blocks the calling thread; returns 0.
int Sleep(std::uint32_t milliseconds);

/// The system's number of the running process.
std::uint64_t ProcessId();

/// The error number of the calling thread's last failed call.
std::uint32_t GetLastError();

/// The path of the running executable; false when it cannot be told, with path left as it was.
bool ReadModulePath(std::string& path);

/// The same in UTF-8, whatever the system's code page; empty when it cannot be told.
std::string ModulePathInUtf8();

/// The value of a variable of the environment in UTF-8, whatever the system's code page; nothing
/// for one that is not set.
std::optional<std::string> EnvironmentVariable(const std::string& name);

/// Creates a process from an executable file and its whole command line. The child inherits the
/// handles and the environment. On success information owns its handles, where the system has any.
/// Where a command line is a list of texts, the child gets the executable path alone.
bool CreateChildProcess(const std::string& executablePath, const std::string& commandLine,
                        const std::string& workingDirectory, bool newConsole,
                        ProcessInformation& information);

/// The command that prints the running processes whose image has the given base name.
std::string TaskListCommand(const std::string& name);

/// Runs a shell command and opens its output for reading; null when it cannot be run.
Pipe* OpenPipe(const std::string& command);

/// Reads until size bytes came or the output ended; returns how many came.
std::size_t ReadPipe(Pipe* pipe, char* buffer, std::size_t size);

/// Waits for the command to end and frees the pipe.
void ClosePipe(Pipe* pipe);

/// The process exit status for a return code. Where the system keeps eight bits only, a
/// code outside 0 to 255 becomes 255, so that a failure never reads as success.
int ToExitStatus(int returnCode);

} // namespace OSAL
