#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"

namespace Bench {

/// Runs a power test under supervision, or goes on with one.
Command AddRun(CLI::App& program);

} // namespace Bench
