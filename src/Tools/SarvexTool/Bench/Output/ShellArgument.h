#pragma once

#include <string>

namespace Bench {

/// An argument as the system's shell takes it in a command that is to be copied: in quotes where it
/// needs them. It may hold any bytes but NUL, and is not harmless on a terminal yet.
std::string ShellArgument(const std::string& argument);

} // namespace Bench
