#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"

#include <string>
#include <vector>

namespace Bench {

/// Runs the program on the process's own streams; the arguments are in UTF-8, without the
/// program's name. Returns the exit code: 0, 1 where a subcommand has found what it looks for,
/// 2 for wrong usage, for files that cannot be read or written, and for what cannot be done. Throws
/// nothing.
int RunProgram(const std::vector<std::string>& arguments);

/// The same on streams of the caller's.
int RunProgram(const std::vector<std::string>& arguments, Surroundings& surroundings);

} // namespace Bench
