#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"

#include <string>
#include <vector>

namespace Bench {

/// Checks a test file before it is run, and prints what is wrong with it. Returns whether it may be
/// run: errors may be passed over by force, but not a cell that would lead the client past the
/// relay, nor a NUL byte. Throws BadInput when the file cannot be read.
bool IsFitToRun(const std::string& testFile, bool force, Surroundings& surroundings);

/// Throws WrongUsage for arguments of the client's own first command that would lead it past the
/// relay.
void RequireRelayed(const std::vector<std::string>& firstCommand);

} // namespace Bench
