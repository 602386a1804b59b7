#pragma once

#include <string>
#include <vector>

namespace SarvexTool {

/// The long usage text, for standard output. Its unbalanced brackets and the same words for two
/// options are known to its readers and kept.
extern const char* const usageText;

/// Copies of all the arguments, the program path included. The last one loses one trailing
/// white-space character, such as a blank or carriage return that a calling script left there; no
/// other is trimmed, and never more than one character.
std::vector<std::string> CopyArguments(int argc, const char* const argv[]);

/// The whole run of the client: takes what is its own out of the command line, sends the rest to
/// the daemon as one command and, with "-wifi-test-by-file", runs the table-driven test. argc and
/// argv are those of main. Returns the exit code: the daemon's return code or the test's result, 0
/// after the short usage, 1 when the daemon cannot be reached, 256 when an exception ended the run
/// (its message is on standard error), 258 when the local daemon cannot be started.
int RunClient(int argc, const char* const argv[]);

} // namespace SarvexTool
