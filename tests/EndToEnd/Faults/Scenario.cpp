#include "tests/EndToEnd/Faults/Scenario.h"

namespace EndToEnd::Faults {

Scenario Answering(const std::string& name, const Script& reaction, const Outcome& outcome) {
    Script script = {TakeRequest()};
    script.insert(script.end(), reaction.begin(), reaction.end());
    return {.name = name, .scripts = {script}, .permitted = {outcome}};
}

Scenario Closing(const std::string& name, const std::string& answer, const Outcome& outcome) {
    return Answering(name, {Send(answer), FinishSending()}, outcome);
}

Scenario Holding(const std::string& name, const std::string& answer, const Outcome& outcome) {
    return Answering(name, {Send(answer)}, outcome);
}

std::string RequestOf(const std::string& commandLine) {
    return "POST /api/oemtools/command HTTP/1.1\r\n"
           "Host: 127.0.0.1:8738\r\n"
           "Connection: keep-alive\r\n"
           "Content-Length: " +
           std::to_string(commandLine.size()) +
           "\r\n"
           "Accept: application/json, text/plain, */*\r\n"
           "User-Agent: Mozilla/5.0 (Windows NT 10.0; Win64; x64) AppleWebKit/537.36 (KHTML, like "
           "Gecko) Chrome/86.0.4240.193 Safari/537.36\r\n"
           "Content-Type: text/plain\r\n"
           "Origin: 127.0.0.1:8738\r\n"
           "Sec-Fetch-Site: same-origin\r\n"
           "Sec-Fetch-Mode: cors\r\n"
           "Sec-Fetch-Dest: empty\r\n"
           "Referer: http://127.0.0.1:8738/homepage\r\n"
           "Accept-Encoding: gzip, deflate, br\r\n"
           "Accept-Language: en-US,en;q=0.9\r\n"
           "\r\n" +
           commandLine;
}

} // namespace EndToEnd::Faults
