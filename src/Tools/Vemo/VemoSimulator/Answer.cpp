#include "Tools/Vemo/VemoSimulator/Answer.h"

#include "Tools/Vemo/VemoSimulator/Device.h"

#include <algorithm>
#include <array>
#include <utility>

namespace VemoSimulator {

namespace {

constexpr std::size_t pieceSize = 512;
/// The shortest piece in which a client looks for the mark.
constexpr std::size_t shortestMarkedPiece = 5;
constexpr std::size_t fillerLineSize = 80;

bool IsTargetPowerOf(const std::string& line, const std::string& chains) {
    return line.starts_with(TargetPowerLabel) && std::ranges::any_of(chains, [&](char chain) {
               return line.find(ChainLabel(chain)) != std::string::npos;
           });
}

/// Lines that are size bytes together, each line's end included.
std::vector<std::string> MakeFiller(std::uint64_t size) {
    std::vector<std::string> lines;
    while (size > 0) {
        const std::uint64_t line = std::min<std::uint64_t>(size, fillerLineSize);
        lines.emplace_back(line - 1, '.');
        size -= line;
    }
    return lines;
}

void AppendSection(std::string& body, std::string_view marker,
                   const std::vector<std::string>& lines, std::string_view lineEnd) {
    if (lines.empty())
        return;
    body.append(marker).append(lineEnd);
    for (const std::string& line : lines)
        body.append(line).append(lineEnd);
}

std::string BuildBody(const AnswerPlan& plan, const Reply& reply) {
    // Line feeds alone: a client takes a marker with a carriage return for an ordinary line.
    const std::string_view lineEnd = plan.hasCrLf ? "\r\n" : "\n";
    std::string body;
    AppendSection(body, "Sarvex tool INFO", reply.information, lineEnd);
    AppendSection(body, "Sarvex tool ERROR", reply.errors, lineEnd);
    AppendSection(body, "Sarvex tool RETURN CODE", {reply.returnCode}, lineEnd);
    if (plan.nulPosition)
        body.insert(std::min<std::size_t>(*plan.nulPosition, body.size()), 1, '\0');
    if (plan.hasEndMark)
        body.append(EndMark);
    return body;
}

std::string BuildHead(const std::string& status, std::size_t bodySize, std::string_view headers) {
    return "HTTP/1.1 " + status +
           "\r\nContent-Type: text/plain\r\nContent-Length: " + std::to_string(bodySize) +
           "\r\nConnection: close\r\n" + std::string(headers) + "\r\n";
}

/// Whether a client that reads an answer of this head and body piece by piece stops at its end.
bool StopsAtEnd(std::size_t headSize, std::string_view body) {
    const std::size_t rest = (headSize + body.size()) % pieceSize;
    if (rest != 0 && rest < shortestMarkedPiece)
        return false;
    const std::size_t firstEnd = (headSize + pieceSize - 1) / pieceSize * pieceSize - headSize;
    for (std::size_t end = firstEnd; end < body.size(); end += pieceSize) {
        if (body.substr(0, end).ends_with(EndMark))
            return false;
    }
    return true;
}

/// The shortest first piece after which a client stops at the end of the answer; npos when that is
/// the whole answer, or none does.
std::size_t FirstPieceOf(std::string_view answer) {
    if (!answer.ends_with(EndMark) || StopsAtEnd(0, answer))
        return std::string::npos;
    for (std::size_t size = 1; size < std::min(answer.size(), pieceSize); ++size) {
        const bool isMarked =
            size >= shortestMarkedPiece && answer.substr(0, size).ends_with(EndMark);
        if (!isMarked && StopsAtEnd(0, answer.substr(size)))
            return size;
    }
    return std::string::npos;
}

std::string BuildPaddedHead(std::string_view body) {
    std::string head = BuildHead("200 OK", body.size(), "");
    for (std::size_t padding = 1; padding <= pieceSize && !StopsAtEnd(head.size(), body); ++padding)
        head = BuildHead("200 OK", body.size(), "X-Padding: " + std::string(padding, '.') + "\r\n");
    return head;
}

/// Sends a piece ahead where a client would miss the mark without it.
void MoveMark(Delivery& delivery) {
    // Long enough for a client to read what is there.
    constexpr std::chrono::milliseconds pause(100);
    delivery.firstPiece = FirstPieceOf(delivery.bytes);
    if (delivery.firstPiece != std::string::npos)
        delivery.pause = pause;
}

} // namespace

Reply ApplyToReply(const AnswerPlan& plan, Reply reply) {
    std::vector<std::string>& lines = reply.information;
    const std::string missing = plan.isUncalibrated ? "AB" : plan.missingChains;
    std::erase_if(lines, [&](const std::string& line) { return IsTargetPowerOf(line, missing); });
    if (plan.isUncalibrated)
        lines.emplace_back(UncalibratedLine);
    if (plan.longLineBytes > 0)
        lines.emplace(lines.begin(), plan.longLineBytes, '.');
    const std::vector<std::string> filler = MakeFiller(plan.fillerBytes);
    lines.insert(lines.begin(), filler.begin(), filler.end());
    reply.returnCode = plan.returnCode.value_or(reply.returnCode);
    return reply;
}

std::string BuildAnswer(const AnswerPlan& plan, const Reply& reply) {
    if (plan.rawAnswer)
        return *plan.rawAnswer;
    const std::string body = BuildBody(plan, reply);
    return BuildPaddedHead(body) + body;
}

bool ChangesText(const AnswerPlan& plan) {
    return !plan.missingChains.empty() || plan.isUncalibrated || plan.returnCode ||
           plan.fillerBytes > 0 || plan.longLineBytes > 0 || plan.hasCrLf || !plan.hasEndMark ||
           plan.nulPosition;
}

std::string ReturnCodeIn(std::string_view answer) {
    constexpr std::string_view marker = "\nSarvex tool RETURN CODE\n";
    const std::size_t start = answer.find(marker);
    if (start == std::string_view::npos)
        return "";
    answer.remove_prefix(start + marker.size());
    return std::string(answer.substr(0, answer.find('\n')));
}

std::string BuildRefusal(int httpStatus, const std::string& text) {
    static constexpr std::array<std::pair<int, const char*>, 4> reasons{
        {{400, "Bad Request"},
         {404, "Not Found"},
         {413, "Payload Too Large"},
         {500, "Internal Server Error"}}};
    const auto* const reason =
        std::ranges::find(reasons, httpStatus, &std::pair<int, const char*>::first);
    const std::string body = text + "\n";
    return BuildHead(std::to_string(httpStatus) + " " + reason->second, body.size(), "") + body;
}

Delivery PlanDelivery(const AnswerPlan& plan, std::string answer) {
    Delivery delivery;
    delivery.bytes = std::move(answer);
    delivery.bytes.resize(
        std::min<std::size_t>(plan.cutAfter.value_or(std::string::npos), delivery.bytes.size()));
    if (plan.isMarkApart && delivery.bytes.ends_with(EndMark))
        delivery.firstPiece = delivery.bytes.size() - EndMark.size();
    if (plan.isDripped)
        delivery.firstPiece = delivery.nextPieces = 1;
    delivery.delay = plan.delay;
    delivery.pause = plan.pause;
    delivery.ending = plan.ending;
    if (!plan.isMarkApart && !plan.isDripped && !plan.rawAnswer)
        MoveMark(delivery);
    return delivery;
}

} // namespace VemoSimulator
