#pragma once

#include "Tools/SarvexTool/Bench/Commands/RunConsole.h"
#include "Tools/SarvexTool/Bench/Files/RunDirectory.h"

#include <string>

namespace Bench {

/// Runs the test of a run's folder to its end, shows how far it is (as "text" or "json") and what
/// it has come to, and writes that into the folder's facts. Returns an ExitCode. Throws BadFile for
/// limits that cannot be read, and what keeps the run from beginning.
int RunTest(RunDirectory& directory, const std::string& progress, RunConsole& console);

} // namespace Bench
