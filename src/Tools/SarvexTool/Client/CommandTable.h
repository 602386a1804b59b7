#pragma once

// Public, stable within a major version. A table belongs to one thread at a time. A malformed table
// is an empty one, no error.

#include "Modules/xFramework/Core/Classes/Value.h"

#include <cstdint>
#include <istream>
#include <list>
#include <map>
#include <string>

namespace SarvexTool {

/// The daemon's own commands: lower-case name to parameter count.
using CommandTable = std::map<std::string, std::int32_t>;

/// Reads a table of lines that each hold a name and a parameter count; what follows on a line is
/// ignored. The first entry of a name wins. One line without a name and a count (an empty line too)
/// makes the whole table empty: on purpose, a half-read table would send some commands bare and
/// some not.
CommandTable ReadCommandTable(std::istream& file);

/// Whether the arguments are nothing but commands of the table, each with its parameters. A last
/// command whose parameters are missing counts as known; one with a negative count is unknown.
bool AreAllKnown(const std::list<Core::Value>& arguments, const CommandTable& table);

} // namespace SarvexTool
