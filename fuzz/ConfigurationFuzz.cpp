// Property: the port is what the first four bytes of Socket.cfg hold up to a NUL, whatever the
// file holds; the command table is that of a plain reader, in which one malformed line empties the
// whole; and arguments are known exactly when a plain walk over them says so.
//
// Input: groups with the port file, the command table, and the arguments, one record each.

#include "Modules/xFramework/Streams/Sockets/SocketStream.h"
#include "Tools/SarvexTool/Client/CommandTable.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Tools/SarvexTool/Client/ProgramDirectory.h"

#include <limits>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

namespace {

std::string ReadPort(const std::string& content) {
    OSAL::Fake::Reset();
    ProgramDirectory::Write("Socket.cfg", content);
    std::string port = "what was there before";
    Utilities::xFrameworkStreams::Sockets::SocketStream().ReadPort(port);
    return port;
}

/// Takes the first word off a line, with the white space before it.
std::string TakeWord(std::string_view& line) {
    constexpr std::string_view whiteSpace = " \t\n\v\f\r";
    line.remove_prefix(std::min(line.find_first_not_of(whiteSpace), line.size()));
    const std::string word(line.substr(0, line.find_first_of(whiteSpace)));
    line.remove_prefix(word.size());
    return word;
}

/// The number at the start of a word, with or without a sign; nothing when there is none and when
/// it does not fit into 32 bits.
std::optional<std::int32_t> CountIn(const std::string& word) {
    constexpr std::int64_t highest = std::numeric_limits<std::int32_t>::max();
    const bool isNegative = word.starts_with('-');
    const std::size_t start = isNegative || word.starts_with('+') ? 1 : 0;
    std::size_t position = start;
    std::int64_t count = 0;
    for (; position < word.size() && word[position] >= '0' && word[position] <= '9'; ++position)
        count = std::min(count * 10 + (word[position] - '0'), highest + 2);
    // One more number lies below 0 than above it.
    if (position == start || count > highest + (isNegative ? 1 : 0))
        return std::nullopt;
    return static_cast<std::int32_t>(isNegative ? -count : count);
}

std::string ToLower(std::string text) {
    for (char& character : text) {
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character - 'A' + 'a');
    }
    return text;
}

SarvexTool::CommandTable ReadTablePlainly(const std::string& content) {
    SarvexTool::CommandTable table;
    std::vector<std::string> lines = Split(content, '\n');
    // After the last line feed there is no line.
    if (lines.back().empty())
        lines.pop_back();
    for (const std::string& text : lines) {
        std::string_view line = text;
        const std::string name = TakeWord(line);
        const auto count = CountIn(TakeWord(line));
        if (name.empty() || !count)
            return {};
        table.insert({ToLower(name), *count});
    }
    return table;
}

bool AreAllKnownPlainly(const std::vector<std::string>& arguments,
                        const SarvexTool::CommandTable& table) {
    std::size_t position = 0;
    while (position < arguments.size()) {
        if (!table.contains(arguments[position]) || table.at(arguments[position]) < 0)
            return false;
        position += 1 + static_cast<std::size_t>(table.at(arguments[position]));
    }
    return true;
}

std::string Describe(const SarvexTool::CommandTable& table) {
    std::string description;
    for (const auto& [name, count] : table)
        description += name + "=" + std::to_string(count) + " ";
    return description;
}

void CheckArguments(const std::vector<std::string>& records,
                    const SarvexTool::CommandTable& table) {
    std::list<Core::Value> arguments;
    std::vector<std::string> texts;
    for (const std::string& record : records) {
        arguments.emplace_back(record);
        texts.push_back(arguments.back().ToString());
    }
    CheckEqual(SarvexTool::AreAllKnown(arguments, table), AreAllKnownPlainly(texts, table),
               "arguments are known when each command of the walk is in the table");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Parts groups(ToText(data, size), GroupSeparator);
    CheckEqual(ReadPort(groups[0]), UpToNul(groups[0].substr(0, 4)),
               "the port is the first four bytes up to a NUL");
    std::istringstream file(groups[1]);
    const SarvexTool::CommandTable table = SarvexTool::ReadCommandTable(file);
    CheckEqual(Describe(table), Describe(ReadTablePlainly(groups[1])),
               "one malformed line empties the table");
    CheckArguments(Split(groups[2], RecordSeparator), table);
    return 0;
}
