#include "Tools/SarvexTool/Bench/Files/ExchangeLog.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/JsonFields.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <utility>

namespace Bench {

namespace {

// In the order of the enumerations.
constexpr std::array<const char*, 2> senders{"client", "supervisor"};
constexpr std::array<const char*, 4> results{"answered", "time-out", "connection lost",
                                             "unreachable"};

template <typename Value, std::size_t Count>
const char* NameIn(const std::array<const char*, Count>& names, Value value) {
    return names.at(static_cast<std::size_t>(value));
}

template <typename Value, std::size_t Count>
Value ValueIn(const std::array<const char*, Count>& names, const JsonFields& fields,
              const std::string& key) {
    const std::string name = fields.Text(key);
    const auto* const found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        throw WrongJson("\"" + key + "\" is never \"" + name + "\"");
    return static_cast<Value>(found - names.begin());
}

LoggedExchange Parse(const std::string& line) {
    const JsonFields fields = JsonFields::Parse(line);
    LoggedExchange exchange;
    exchange.number = fields.Count("number");
    exchange.line = fields.Line("line");
    exchange.by = ValueIn<Sender>(senders, fields, "by");
    exchange.command = fields.Text("command");
    exchange.answer = fields.Text("answer");
    exchange.result = ValueIn<ExchangeResult>(results, fields, "end");
    exchange.seconds = fields.Seconds("seconds");
    exchange.time = fields.Text("time");
    return exchange;
}

} // namespace

std::string LineOf(const LoggedExchange& exchange) {
    Json json{{"number", exchange.number}, {"line", exchange.line}};
    json["by"] = NameIn(senders, exchange.by);
    PutText(json, "command", exchange.command);
    PutText(json, "answer", exchange.answer);
    json["end"] = NameIn(results, exchange.result);
    json["seconds"] = exchange.seconds;
    json["time"] = exchange.time;
    return LineOf(json);
}

ExchangeLog::ExchangeLog(const std::string& name)
    : m_file(name, OSAL::DurableFile::Opening::Either) {
    std::ifstream file(PathOf(name), std::ios::binary);
    ExchangeReader reader(file, name);
    for (LoggedExchange exchange; reader.Read(exchange);)
        m_count = exchange.number;
    m_file.Truncate(reader.End());
}

void ExchangeLog::Append(LoggedExchange exchange) {
    exchange.number = ++m_count;
    m_file.Append(LineOf(exchange));
}

ExchangeReader::ExchangeReader(std::istream& stream, std::string name)
    : m_lines(stream, std::move(name)) {}

bool ExchangeReader::Read(LoggedExchange& exchange) {
    return m_lines.Read([&exchange](const std::string& line) { exchange = Parse(line); });
}

} // namespace Bench
