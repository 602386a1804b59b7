#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"

namespace Bench {

/// merge DIR -o RUN: puts the runs of a plan's chunks together as one run of the plan.
Command AddMerge(CLI::App& program);

} // namespace Bench
