#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Bench {

struct Command {
    /// The program, found along the path, and its arguments.
    std::vector<std::string> words;
    std::string standardInput;
};

struct ProcessFigures {
    double milliseconds = 0;
    /// What it took of processors, in user and system mode: other work on the machine hardly adds
    /// to it.
    double processorMilliseconds = 0;
    /// The largest resident size. Less than this program's own is never told.
    std::uint64_t peakBytes = 0;
    /// -1 when the command did not end by itself.
    int exitCode = -1;
};

/// Runs a command to its end, reading its output through a pipe.
ProcessFigures FiguresOf(const Command& command);

/// Runs a command to its end, reading its output through a pipe, and returns how long that took.
/// Throws std::runtime_error when the command fails.
double MillisecondsOf(const Command& command);

} // namespace Bench
