#include "Tools/SarvexTool/Client/CommandTable.h"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace SarvexTool {

namespace {

char ToLower(char character) {
    const bool isUpper = character >= 'A' && character <= 'Z';
    return isUpper ? static_cast<char>(character - 'A' + 'a') : character;
}

/// Adds the command of one line; false when the line is malformed.
bool AddCommand(const std::string& line, CommandTable& table) {
    std::istringstream fields(line);
    std::string name;
    std::int32_t parameterCount = 0;
    if (!(fields >> name >> parameterCount))
        return false;
    std::transform(name.begin(), name.end(), name.begin(), ToLower);
    table.emplace(name, parameterCount);
    return true;
}

} // namespace

CommandTable ReadCommandTable(std::istream& file) {
    CommandTable table;
    std::string line;
    while (std::getline(file, line)) {
        if (!AddCommand(line, table))
            return {};
    }
    return table;
}

bool AreAllKnown(const std::list<Core::Value>& arguments, const CommandTable& table) {
    auto argument = arguments.begin();
    auto remaining = static_cast<std::int64_t>(arguments.size());
    while (remaining > 0) {
        const auto command = table.find(argument->ToString());
        // A negative count would lead this walk backwards.
        if (command == table.end() || command->second < 0)
            return false;
        const std::int64_t taken = std::int64_t{1} + command->second;
        if (remaining < taken)
            return true;
        std::advance(argument, taken);
        remaining -= taken;
    }
    return true;
}

} // namespace SarvexTool
