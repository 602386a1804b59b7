#include "Tools/SarvexTool/Bench/Commands/OptionValues.h"

#include "Modules/xFramework/OSAL/Process.h"
#include "Tools/SarvexTool/Bench/Commands/Command.h"
#include "Tools/SarvexTool/Bench/Daemon/Daemon.h"
#include "Tools/SarvexTool/Bench/Files/Locks.h"
#include "Tools/SarvexTool/Bench/Files/UtcTime.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <optional>

namespace Bench {

Decimal SecondsOf(const std::string& option, const std::string& text) {
    constexpr std::int32_t longestSeconds = 86'400;
    const std::optional<Decimal> seconds = Decimal::Parse(text);
    if (!seconds || *seconds < Decimal() || *seconds > Decimal::FromInteger(longestSeconds))
        throw WrongUsage(option + " " + text + " is no time in seconds, from 0 to " +
                         std::to_string(longestSeconds));
    return *seconds;
}

double TimeOf(const std::string& option, const std::string& text) {
    constexpr double shortest = 0.001;
    const double seconds = SecondsOf(option, text).ToDouble();
    if (seconds < shortest)
        throw WrongUsage(option + " is too short");
    return seconds;
}

std::uint32_t NumberOf(const std::string& option, const std::string& text, std::uint32_t least,
                       std::uint32_t most) {
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end || number < least || number > most)
        throw WrongUsage(option + " " + text + " is no number from " + std::to_string(least) +
                         " to " + std::to_string(most));
    return number;
}

std::optional<std::string> TextFrom(const std::string& option,
                                    const std::optional<std::string>& text, const char* what) {
    if (!text)
        return std::nullopt;
    constexpr const char* blanks = " \t\r\n";
    const std::size_t first = text->find_first_not_of(blanks);
    if (first == std::string::npos)
        throw WrongUsage(option + " needs " + what);
    return text->substr(first, text->find_last_not_of(blanks) + 1 - first);
}

std::optional<PlacePart> GroupByOf(const std::optional<std::string>& text) {
    if (!text)
        return std::nullopt;
    const std::optional<PlacePart> part = PlacePartNamed(*text);
    if (!part)
        throw WrongUsage("--group-by " + *text + " is none of bench, device and attempt");
    return part;
}

void RequireTold(std::optional<PlacePart> part, std::span<const Sources* const> runs) {
    if (!part || std::any_of(runs.begin(), runs.end(), [part](const Sources* const sources) {
            return AreTold(*sources, *part);
        }))
        return;
    const std::string name = NameOf(*part);
    throw WrongUsage("--group-by " + name + " needs a run that tells its " + name +
                     ": the folder of one that was run with --" + name +
                     ", or that was merged from such runs");
}

DaemonAddress DaemonOf(const std::string& text) {
    std::optional<DaemonAddress> address = ParseDaemonAddress(text);
    if (!address)
        throw WrongUsage("--daemon " + text +
                         " is no address; give HOST or HOST:PORT, an IPv6 address in brackets");
    if (address->port == 0)
        address->port = ReadPortBesideProgram();
    return *address;
}

OSAL::FileLock LockDaemonAt(const DaemonAddress& address, const std::string& directory) {
    return LockDaemon(ResolvedHost(address), address.port,
                      {OSAL::ProcessId(), directory, UtcTime(std::chrono::system_clock::now())});
}

} // namespace Bench
