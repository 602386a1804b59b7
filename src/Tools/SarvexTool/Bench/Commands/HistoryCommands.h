#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"

// The subcommands of history: each adds its options to those of history.

namespace Bench {

/// history add RUN...: keeps runs.
Command AddHistoryAdd(Options history);

/// history list: tells which runs are kept.
Command AddHistoryList(Options history);

/// history show RUN: tells all of a kept run.
Command AddHistoryShow(Options history);

/// history export RUN -o DIR: writes the files of a kept run as they were.
Command AddHistoryExport(Options history);

/// history remove RUN...: removes kept runs.
Command AddHistoryRemove(Options history);

/// history check: tells whether all is as it was kept.
Command AddHistoryCheck(Options history);

/// history baseline set|show: names runs that others are held against.
Command AddHistoryBaseline(Options history);

/// history trend: follows the benches over time, and tells which one drifts.
Command AddHistoryTrend(Options history);

/// history report -o FILE: shows the kept runs and their benches as one HTML page.
Command AddHistoryReport(Options history);

/// A subcommand that needs one of its own subcommands.
Command GroupOf(Options app, std::vector<Command> commands);

} // namespace Bench
