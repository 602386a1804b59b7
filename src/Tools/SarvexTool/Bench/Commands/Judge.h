#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"

namespace Bench {

/// judge RESULT --limits LIMITS: holds each measurement of a run against its limits.
Command AddJudge(CLI::App& program);

} // namespace Bench
