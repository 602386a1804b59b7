#pragma once

#include <string>
#include <vector>

/// Copies of all the arguments, the program path included. The last one loses one trailing
/// white-space character, such as a blank or carriage return that a calling script left there; no
/// other is trimmed, and never more than one character.
std::vector<std::string> CopyArguments(int argc, const char* const argv[]);
