#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"

namespace Bench {

/// check FILE...: tells all that is wrong with test files.
Command AddCheck(CLI::App& program);

} // namespace Bench
