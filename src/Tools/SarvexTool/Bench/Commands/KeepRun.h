#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"
#include "Tools/SarvexTool/Bench/Files/RunDirectory.h"

namespace Bench {

/// Keeps a run that is over in the store that its facts name, and tells on standard error what has
/// become of it. One that ended early is kept when it has been gone on with. Returns the run's exit
/// code, or Found for Fine where it is complete and cannot be kept.
int KeepRun(RunDirectory& directory, int exitCode, Surroundings& surroundings);

} // namespace Bench
