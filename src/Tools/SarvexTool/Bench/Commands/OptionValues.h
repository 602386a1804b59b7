#pragma once

#include "Modules/xFramework/OSAL/FileLock.h"
#include "Tools/SarvexTool/Bench/Core/Decimal.h"
#include "Tools/SarvexTool/Bench/Core/Sources.h"
#include "Tools/SarvexTool/Bench/Daemon/DaemonAddress.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace Bench {

/// A time in seconds from an option: a decimal from 0 to that of a day. Throws WrongUsage.
Decimal SecondsOf(const std::string& option, const std::string& text);

/// Such a time in which something is to be done, 0.001 s at least. Throws WrongUsage.
double TimeOf(const std::string& option, const std::string& text);

/// A whole number from an option, from the least to the most. Throws WrongUsage.
std::uint32_t NumberOf(const std::string& option, const std::string& text, std::uint32_t least,
                       std::uint32_t most);

/// A text from an option, where it was given, without the blanks around it. Throws WrongUsage for
/// an empty one, as with a variable of a script that is not set, and for one of blanks.
std::optional<std::string> TextFrom(const std::string& option,
                                    const std::optional<std::string>& text,
                                    const char* what = "a text");

/// What --group-by asks for. Throws WrongUsage.
std::optional<PlacePart> GroupByOf(const std::optional<std::string>& text);

/// Throws WrongUsage where --group-by asks for something of which no run tells anything.
void RequireTold(std::optional<PlacePart> part, std::span<const Sources* const> runs);

/// A daemon's address from the option --daemon, with the port of the client's Socket.cfg beside the
/// program where it has none. Throws WrongUsage, and BadInput for the file.
DaemonAddress DaemonOf(const std::string& text);

/// Has the lock of the daemon at an address as long as the result lives. The directory is that of
/// the run, and empty for a command without one. Throws InUse, which says who has it.
OSAL::FileLock LockDaemonAt(const DaemonAddress& address, const std::string& directory);

} // namespace Bench
