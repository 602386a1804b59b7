#include "Tools/SarvexTool/Bench/Output/ShellArgument.h"

#include <filesystem>
#include <string_view>

namespace Bench {

namespace {

constexpr bool isWindows = std::filesystem::path::preferred_separator == '\\';

/// For the shells of Unix: in single quotes nothing has a meaning but their end.
std::string InSingleQuotes(const std::string& argument) {
    std::string quoted = "'";
    for (const char character : argument)
        quoted += character == '\'' ? "'\\''" : std::string(1, character);
    return quoted + "'";
}

/// As the programs of Windows read their arguments: before a quote, backslashes count twice.
std::string InDoubleQuotes(const std::string& argument) {
    std::string quoted = "\"";
    std::size_t backslashes = 0;
    for (const char character : argument) {
        if (character == '"')
            quoted.append(backslashes + 1, '\\');
        backslashes = character == '\\' ? backslashes + 1 : 0;
        quoted += character;
    }
    return quoted.append(backslashes, '\\') + "\"";
}

} // namespace

std::string ShellArgument(const std::string& argument) {
    constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                       "0123456789_./:-+=@\\";
    const std::string_view known = plain.substr(0, plain.size() - (isWindows ? 0 : 1));
    if (!argument.empty() && argument.find_first_not_of(known) == std::string::npos)
        return argument;
    return isWindows ? InDoubleQuotes(argument) : InSingleQuotes(argument);
}

} // namespace Bench
