#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"

namespace Bench {

/// Stops a device's transmission by hand.
Command AddStop(CLI::App& program);

} // namespace Bench
