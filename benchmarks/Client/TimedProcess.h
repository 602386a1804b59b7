#pragma once

#include <string>
#include <vector>

namespace Bench {

struct Command {
    /// The program, found along the path, and its arguments.
    std::vector<std::string> words;
    std::string standardInput;
};

/// Runs a command to its end, reading its output through a pipe, and returns how long that took.
/// Throws std::runtime_error when the command fails.
double MillisecondsOf(const Command& command);

} // namespace Bench
