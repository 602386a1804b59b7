#pragma once

#include "Tools/SarvexTool/Bench/Commands/Options.h"
#include "Tools/SarvexTool/Bench/Output/Console.h"

#include <functional>
#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

namespace Bench {

/// The highest one of several files counts.
enum ExitCode : int {
    Fine = 0,
    /// What the subcommand looks for is there: errors, measurements that did not pass, differences.
    Found = 1,
    /// Wrong usage, a file that cannot be read or written, a daemon that does not answer, or two
    /// runs without a power.
    Failed = 2,
    /// A power test that ended early and can be resumed.
    EndedEarly = 3,
    /// A transmission whose stop was not confirmed.
    StopNotConfirmed = 4
};

/// The standard streams, or what takes their place.
struct Surroundings {
    std::istream& in;
    Console out;
    Console err;
    /// The arguments after "--", where the subcommand hands them on.
    std::vector<std::string> handedOn = {};
};

/// A subcommand whose options were added to the program's.
struct Command {
    Options options;
    /// Does what the options ask for, after they were parsed; returns an ExitCode. Throws BadFile,
    /// WrongUsage and other exceptions of the standard library.
    std::function<int(Surroundings&)> run;
    /// Whether it has done its work whatever becomes of standard output: its exit code then stands
    /// though nobody reads.
    bool standsWithoutOutput = false;
};

/// The arguments cannot be meant as they are. The text says why, without an end mark.
class WrongUsage : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace Bench
