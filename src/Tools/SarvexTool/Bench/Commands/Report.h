#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"

namespace Bench {

/// report RESULT -o FILE.html: shows a run as one HTML page.
Command AddReport(CLI::App& program);

} // namespace Bench
