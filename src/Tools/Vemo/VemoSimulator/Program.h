#pragma once

#include <string>
#include <vector>

namespace VemoSimulator {

/// The whole program; arguments are those after its name, by which it was called. Blocks until it
/// is told to end. Returns the exit code: 0, 1 when it cannot listen or open a file, 2 for a wrong
/// command line.
int RunProgram(const std::vector<std::string>& arguments, const std::string& calledAs);

} // namespace VemoSimulator
