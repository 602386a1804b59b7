#include "Tools/SarvexTool/Bench/Files/Journal.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/JsonFields.h"

#include <fstream>
#include <optional>
#include <utility>

namespace Bench {

namespace {

/// The first line after the header.
constexpr LineNumber firstLine = 2;

constexpr const char* explicitKey = "explicit";

Json ToJson(const ChainOutcome& chain) {
    Json json{{"outcome", NameOf(chain.outcome)}};
    if (!chain.text.empty())
        PutText(json, "text", chain.text);
    return json;
}

ChainOutcome ChainOf(const JsonFields& fields) {
    const std::string name = fields.Text("outcome");
    const std::optional<Outcome> outcome = OutcomeNamed(name);
    if (!outcome)
        throw WrongJson("there is no outcome \"" + name + "\"");
    return {*outcome, fields.Has("text") ? fields.Text("text") : ""};
}

JournalEntry Parse(const std::string& line) {
    const JsonFields fields = JsonFields::Parse(line);
    JournalEntry entry;
    entry.line = fields.Line("line");
    entry.outcome.isAccepted = fields.Flag("accepted");
    entry.outcome.a = ChainOf(fields.Object("a"));
    entry.outcome.b = ChainOf(fields.Object("b"));
    entry.csvEnd = fields.Count("csvEnd");
    entry.started = fields.Text("started");
    entry.seconds = fields.Seconds("seconds");
    entry.isExplicit = fields.Has(explicitKey) && fields.Flag(explicitKey);
    return entry;
}

void RequireOrder(const JournalEntry& last, const JournalEntry& next) {
    const LineNumber expected = last.line == 0 ? firstLine : last.line + 1;
    if (next.line != expected)
        throw WrongJson("line " + std::to_string(expected) + " of the test file is missing");
    if (next.csvEnd <= last.csvEnd)
        throw WrongJson("the row has no place of its own in result.csv");
}

} // namespace

std::string LineOf(const JournalEntry& entry) {
    Json json{{"line", entry.line},           {"accepted", entry.outcome.isAccepted},
              {"a", ToJson(entry.outcome.a)}, {"b", ToJson(entry.outcome.b)},
              {"csvEnd", entry.csvEnd},       {"started", entry.started},
              {"seconds", entry.seconds}};
    if (entry.isExplicit)
        json[explicitKey] = true;
    return LineOf(json);
}

void Journal::Append(const JournalEntry& entry) {
    m_file.Append(LineOf(entry));
    m_file.Sync();
}

JournalReader::JournalReader(std::istream& stream, std::string name)
    : m_lines(stream, std::move(name)) {}

bool JournalReader::Read(JournalEntry& entry) {
    const bool isRead = m_lines.Read([this](const std::string& line) {
        JournalEntry next = Parse(line);
        RequireOrder(m_last, next);
        m_last = std::move(next);
    });
    if (isRead)
        entry = m_last;
    return isRead;
}

std::vector<JournalEntry> ReadJournal(const std::string& name) {
    std::ifstream file(PathOf(name), std::ios::binary);
    if (!file)
        throw BadInput(name, "cannot be read");
    JournalReader reader(file, name);
    std::vector<JournalEntry> entries;
    for (JournalEntry entry; reader.Read(entry);)
        entries.push_back(entry);
    return entries;
}

} // namespace Bench
