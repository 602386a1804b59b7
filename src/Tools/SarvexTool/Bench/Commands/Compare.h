#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"

namespace Bench {

/// compare OLD NEW: tells what differs between two runs.
Command AddCompare(CLI::App& program);

} // namespace Bench
