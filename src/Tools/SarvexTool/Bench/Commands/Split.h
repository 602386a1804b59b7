#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"

namespace Bench {

/// Adds the subcommand that cuts a plan into chunks, for several benches.
Command AddSplit(CLI::App& program);

} // namespace Bench
