#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace OSAL {

/// What a child process is started with. All texts are in UTF-8 on systems that know encodings.
struct ChildStart {
    /// The path of an executable file, which is not searched for.
    std::string program;
    /// They arrive in the child as they are given here.
    std::vector<std::string> arguments;
    std::string workingDirectory;
    /// Takes what the child writes on its standard output and standard error, after what the file
    /// holds already; created when there is none.
    std::string outputFile;
};

/// How a child process ended.
struct ChildEnd {
    /// The exit code, of 32 bits on Windows and of eight elsewhere; the signal's number when one
    /// ended it.
    int code = 0;
    bool isBySignal = false;

    bool operator==(const ChildEnd&) const = default;
};

/// A child process that ends at the latest with this program, however this one ends. Its standard
/// input is empty; it inherits the environment and nothing that is open. A key that interrupts this
/// program at its console does not reach it.
class ChildProcess {
public:
    /// Starts it. Where a child lives no longer than the thread that started it (Linux), that is to
    /// be the main thread. Relative paths are those of this program's own directory. Throws
    /// std::system_error, named after the file or directory, when it cannot be started.
    explicit ChildProcess(const ChildStart& start);
    /// Kills it if it still runs. No other thread may wait for it any more.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Ends it at once, and what it has started in its group (Windows: all that it has started).
    /// Does not wait; does nothing when it has ended. Any thread may call it.
    void Kill();

    /// Blocks until it has ended. Any one thread may call it; afterwards it returns the same again.
    /// Throws std::system_error when the system cannot tell.
    ChildEnd Wait();

    /// The system's number of the process.
    std::uint64_t Id() const;

private:
    struct System;
    std::unique_ptr<System> m_pSystem;
};

} // namespace OSAL
