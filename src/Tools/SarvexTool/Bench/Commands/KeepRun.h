#pragma once

#include "Tools/SarvexTool/Bench/Commands/RunConsole.h"
#include "Tools/SarvexTool/Bench/Files/RunDirectory.h"

namespace Bench {

/// Makes the store of a run that is to be kept, before it is begun: hours later it would be too
/// late to name another. It must be none of the run's files. Throws StoreError and WrongUsage.
void RequireStore(const RunFacts& facts, const RunFiles& files);

/// Keeps a run that is over in the store that its facts name, and tells on standard error what has
/// become of it. One that ended early, or whose last stop was not confirmed, is kept when it has
/// been gone on with. Returns the run's exit code, or Found for Fine where it is complete and
/// cannot be kept. A request to end the program ends it with that code while the run is being kept.
int KeepRun(RunDirectory& directory, int exitCode, RunConsole& console);

} // namespace Bench
