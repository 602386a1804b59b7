#pragma once

#include "Tools/SarvexTool/Bench/Daemon/DaemonAddress.h"
#include "Tools/SarvexTool/Bench/Files/RunDirectory.h"
#include "Tools/SarvexTool/Bench/Supervision/Supervisor.h"

#include <chrono>

namespace Bench {

std::chrono::milliseconds Milliseconds(double seconds);

/// The daemon of a run. Throws std::runtime_error when its facts name none.
DaemonAddress DaemonIn(const RunFacts& facts);

/// What a supervisor needs to know of a run that begins, or goes on: what it was asked for, and
/// what the daemon was set to by the lines that it has already. Throws BadInput.
SupervisorOptions OptionsOf(RunDirectory& directory);

} // namespace Bench
