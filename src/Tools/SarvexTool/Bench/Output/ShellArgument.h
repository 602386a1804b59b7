#pragma once

#include <string>

namespace Bench {

/// An argument as the system's shell takes it in a command that is to be copied: in quotes where it
/// needs them. It may hold any bytes but NUL. Where Unix shells read it, control characters are
/// escaped in a way that sh alone need not know; it is not harmless on a terminal yet.
std::string ShellArgument(const std::string& argument);

} // namespace Bench
