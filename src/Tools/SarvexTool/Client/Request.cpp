#include "Tools/SarvexTool/Client/Request.h"

#include "Modules/xFramework/Utilities/Format.h"
#include "Modules/xFramework/Utilities/FormatProviders.h"

namespace SarvexTool {

namespace {

/// The port in the headers is fixed text, whatever port is dialled, and the Origin header has no
/// scheme: the daemon knows its clients by these bytes. The encodings are named though the client
/// decodes none.
constexpr const char* headTemplate =
    "POST /api/oemtools/command HTTP/1.1\r\n"
    "Host: ${1}:8738\r\n"
    "Connection: keep-alive\r\n"
    "Content-Length: ${2}\r\n"
    "Accept: application/json, text/plain, */*\r\n"
    "User-Agent: Mozilla/5.0 (Windows NT 10.0; Win64; x64) AppleWebKit/537.36 (KHTML, like Gecko) "
    "Chrome/86.0.4240.193 Safari/537.36\r\n"
    "Content-Type: text/plain\r\n"
    "Origin: ${3}:8738\r\n"
    "Sec-Fetch-Site: same-origin\r\n"
    "Sec-Fetch-Mode: cors\r\n"
    "Sec-Fetch-Dest: empty\r\n"
    "Referer: http://${4}:8738/homepage\r\n"
    "Accept-Encoding: gzip, deflate, br\r\n"
    "Accept-Language: en-US,en;q=0.9\r\n"
    "\r\n";

/// A text with the variables in it replaced, as the formatter would insert it.
std::string Expand(std::string text) {
    Utilities::FormatProviders::Instance().ProcessString(text);
    return text;
}

} // namespace

std::string BuildCommandLine(const std::string& prefix, const std::string& argumentText) {
    return "CLI -1 " + prefix + argumentText;
}

std::string BuildRequest(const std::string& address, const std::string& commandLine) {
    // After the head, not an argument of it: the value of a variable is sent as it is and not
    // searched for variables again, and its length is the one that the head tells.
    const std::string body = Expand(commandLine);
    const std::string length = std::to_string(body.size());
    return Utilities::FillTemplate(headTemplate, {address, length, address, address}) + body;
}

} // namespace SarvexTool
