#include "Tools/Vemo/VemoSimulator/RequestLog.h"

#include <nlohmann/json.hpp>

namespace VemoSimulator {

namespace {

/// UTF-8 for the characters whose numbers are the bytes of the text.
std::string BytesAsCharacters(const std::string& bytes) {
    constexpr unsigned char firstLong = 0x80;
    std::string text;
    text.reserve(bytes.size());
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < firstLong) {
            text.push_back(character);
        } else {
            text.push_back(static_cast<char>(0xC0 | byte >> 6));
            text.push_back(static_cast<char>(0x80 | (byte & 0x3F)));
        }
    }
    return text;
}

} // namespace

std::string FormatLogLine(const Request& request, const LogRecord& record) {
    nlohmann::ordered_json line;
    if (record.number != 0)
        line["number"] = record.number;
    line["method"] = BytesAsCharacters(request.method);
    line["target"] = BytesAsCharacters(request.target);
    line["command"] = BytesAsCharacters(request.body);
    line["bodyBytes"] = request.body.size();
    line["headers"] = nlohmann::ordered_json::object();
    for (const auto& [name, value] : request.headers)
        line["headers"][BytesAsCharacters(name)] = BytesAsCharacters(value);
    line["httpStatus"] = record.httpStatus;
    if (record.number != 0)
        line["returnCode"] = BytesAsCharacters(record.returnCode);
    line["answerBytes"] = record.answerBytes;
    line["faults"] = nlohmann::ordered_json::array();
    for (const std::string& fault : record.faults)
        line["faults"].push_back(BytesAsCharacters(fault));
    return line.dump();
}

} // namespace VemoSimulator
