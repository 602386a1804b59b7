#include "fuzz/Support/PlainReply.h"

#include "fuzz/Support/Input.h"

#include <sstream>
#include <stdexcept>

namespace {

constexpr std::size_t pieceSize = 512;

/// What one read gives.
std::string PlainRead(std::deque<std::string>& pieces) {
    if (pieces.empty())
        return "";
    const std::string chunk = pieces.front().substr(0, pieceSize);
    pieces.front().erase(0, chunk.size());
    if (pieces.front().empty())
        pieces.pop_front();
    return UpToNul(chunk);
}

std::string PlainBody(const std::string& message) {
    const std::size_t end = message.find("\r\n\r\n");
    return end == std::string::npos ? message : message.substr(end + 4);
}

bool IsMarker(const std::string& line) {
    return line == "Sarvex tool INFO" || line == "Sarvex tool ERROR" ||
           line == "Sarvex tool RETURN CODE";
}

/// Puts a line that is no marker where the last marker wants it.
void PlainTake(const std::string& line, std::string& marker, PlainReply& reply) {
    if (marker == "Sarvex tool INFO")
        reply.information += line + "\n";
    if (marker == "Sarvex tool ERROR")
        reply.error += line + "\n";
    if (marker == "Sarvex tool RETURN CODE") {
        marker.clear();
        reply.returnCode = std::stoi(line);
    }
}

void PlainTakeAll(const std::string& body, PlainReply& reply) {
    std::istringstream lines(body);
    std::string marker = "Sarvex tool INFO";
    // The end is looked for before each line, so that an empty one follows the last line feed.
    while (!lines.eof()) {
        std::string line;
        std::getline(lines, line);
        reply.allLines += line + "\n";
        if (IsMarker(line))
            marker = line;
        else
            PlainTake(line, marker, reply);
    }
}

} // namespace

std::string PlainReceive(std::deque<std::string>& pieces, int& reads) {
    std::string message;
    for (reads = 1;; ++reads) {
        const std::string chunk = PlainRead(pieces);
        message += chunk;
        if (chunk.empty())
            return message;
        if (chunk.size() > 4 && chunk.substr(chunk.size() - 4) == "Done")
            return message.substr(0, message.size() - 4);
    }
}

PlainReply PlainSort(const std::string& message) {
    PlainReply reply;
    try {
        PlainTakeAll(PlainBody(message), reply);
    } catch (const std::invalid_argument&) {
        reply.problem = "invalid stoi argument";
    } catch (const std::out_of_range&) {
        reply.problem = "stoi argument out of range";
    }
    const std::string printed = reply.information + reply.error;
    // A word that begins in the one and ends in the other does not count: each ends in a line feed.
    if (printed.find("uncalibrated") != std::string::npos)
        reply.returnCode = 10;
    return reply;
}
