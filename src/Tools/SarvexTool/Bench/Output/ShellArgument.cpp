#include "Tools/SarvexTool/Bench/Output/ShellArgument.h"

#include <algorithm>
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

bool IsControl(char character) {
    constexpr char firstPrintable = ' ';
    constexpr char deleteCharacter = 0x7F;
    return (character >= 0 && character < firstPrintable) || character == deleteCharacter;
}

/// For a name that holds a line end, for example: no console shows that as it is.
std::string InEscapes(const std::string& argument) {
    std::string quoted = "$'";
    for (const char character : argument) {
        if (IsControl(character))
            quoted += {'\\', static_cast<char>('0' + (character >> 6)),
                       static_cast<char>('0' + (character >> 3) % 8),
                       static_cast<char>('0' + character % 8)};
        else if (character == '\'' || character == '\\')
            quoted += {'\\', character};
        else
            quoted += character;
    }
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
    if (isWindows)
        return InDoubleQuotes(argument);
    const bool hasControls = std::any_of(argument.begin(), argument.end(), IsControl);
    return hasControls ? InEscapes(argument) : InSingleQuotes(argument);
}

} // namespace Bench
