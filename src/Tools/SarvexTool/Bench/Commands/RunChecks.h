#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"
#include "Tools/SarvexTool/Bench/Core/Configurations.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

/// Checks a test file before it is run, and prints what is wrong with it. Returns whether it may be
/// run: errors may be passed over by force, but not a cell that would lead the client past the
/// relay, nor a NUL byte. Throws BadInput when the file cannot be read.
bool IsFitToRun(const std::string& testFile, bool force, Surroundings& surroundings);

/// The same before a test file is split, whose bytes were read and which has no errors that could
/// be passed over. Returns the number of its lines without the header, and nothing when it may not
/// be split. The pool keeps the file's cells.
std::optional<LineNumber> LinesFitToSplit(const std::string& testFile, std::string_view bytes,
                                          TextPool& pool, Surroundings& surroundings);

/// Throws WrongUsage for arguments of the client's own first command that would lead it past the
/// relay.
void RequireRelayed(const std::vector<std::string>& firstCommand);

} // namespace Bench
