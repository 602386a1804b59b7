#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"

// The subcommands, each in a source of its name: its options are added to the program's.

namespace Bench {

/// check FILE...: tells all that is wrong with test files.
Command AddCheck(Options program);

/// compare OLD NEW: tells what differs between two runs.
Command AddCompare(Options program);

/// history SUBCOMMAND: keeps runs, and tells what is kept.
Command AddHistory(Options program);

/// judge RESULT --limits LIMITS: holds each measurement of a run against its limits.
Command AddJudge(Options program);

/// merge DIR -o RUN: puts the runs of a plan's chunks together as one run of the plan.
Command AddMerge(Options program);

/// report RESULT -o FILE.html: shows a run as one HTML page.
Command AddReport(Options program);

/// run TEST_FILE: runs a power test under supervision, or goes on with one.
Command AddRun(Options program);

/// split PLAN -o DIR: cuts a plan into chunks for several benches.
Command AddSplit(Options program);

} // namespace Bench
