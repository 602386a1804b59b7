// Property: whatever a recording holds, the simulated daemon refuses it with a message that names
// the file and, where a line is wrong, that line; or it replays it. Then each answer is that of an
// exchange which ended "answered": as many as there are, in their order, the last one again after
// them, byte by byte. A client that reads 512 bytes at a time stops at the end mark of an answer
// without NUL bytes and nowhere else. Any other command is told to be unknown.
//
// Input: the bytes of the file.

#include "Tools/Vemo/VemoSimulator/Recording.h"
#include "Tools/Vemo/VemoSimulator/Simulator.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"

#include <nlohmann/json.hpp>

#include <map>
#include <optional>
#include <stdexcept>

namespace {

using namespace VemoSimulator;

using Answers = std::map<std::string, std::vector<std::string>>;

/// The answers that can be read off without base64, if the file is sound.
Answers PlainAnswers(const std::string& input) {
    Answers answers;
    for (const std::string& line : Split(input, '\n')) {
        const auto exchange = nlohmann::json::parse(line, nullptr, false);
        if (exchange.is_object() && exchange.value("end", nlohmann::json()) == "answered" &&
            exchange.contains("command") && exchange.contains("answer"))
            answers[exchange["command"].get<std::string>()].push_back(
                exchange["answer"].get<std::string>());
    }
    return answers;
}

bool HasBase64(const std::string& input) {
    // An escape may hide the name of a key.
    return input.find("Base64") != std::string::npos || input.find("\\u") != std::string::npos;
}

void CheckRefusal(const std::string& input, const std::string& message) {
    Check(message.find("FILE") != std::string::npos, "a refusal names the file");
    const std::string label = "FILE, line ";
    if (!message.starts_with(label))
        return;
    const std::size_t number = std::stoul(message.substr(label.size()));
    Check(number >= 1 && number <= Split(input, '\n').size(), "a refusal names a line of the file");
}

/// As a client reads each piece of the delivery, 512 bytes at a time; nothing when it waits for
/// more or stops before the end.
bool StopsAtEnd(const Delivery& delivery) {
    const std::string& bytes = delivery.bytes;
    std::size_t first = std::min(delivery.firstPiece, bytes.size());
    std::size_t read = 0;
    while (read < bytes.size()) {
        const std::size_t available = read < first ? first - read : bytes.size() - read;
        const std::string chunk = bytes.substr(read, std::min<std::size_t>(available, 512));
        read += chunk.size();
        if (chunk.size() >= 5 && chunk.ends_with("Done"))
            return read == bytes.size();
    }
    return false;
}

void CheckDelivery(const Delivery& delivery, const std::string& answer) {
    CheckEqual(delivery.bytes, answer, "an answer is sent byte by byte");
    // With a mark at every place where a piece can end there is no way.
    const bool isPlain = answer.find("Done") + 4 == answer.size();
    if (isPlain && answer.size() >= 5)
        Check(StopsAtEnd(delivery), "a client stops at the end mark");
}

Delivery Send(Simulator& simulator, const std::string& command) {
    return simulator.Handle({"POST", "/api/oemtools/command", {}, command});
}

void CheckReplay(const std::shared_ptr<const Recording>& pRecording, const Answers& expected) {
    std::ostringstream problems;
    Simulator::Settings settings;
    settings.pRecording = pRecording;
    Simulator simulator(settings, nullptr, problems);
    for (const auto& [command, answers] : expected) {
        const auto* const pAnswers = pRecording->AnswersTo(command);
        Check(pAnswers != nullptr && *pAnswers == answers, "answers are kept in their order");
        if (!command.starts_with("CLI -1 "))
            continue;
        for (const std::string& answer : answers)
            CheckDelivery(Send(simulator, command), answer);
        CheckDelivery(Send(simulator, command), answers.back());
    }
    Check(problems.str().empty(), "a recorded command is known");
    const std::string unknown = "CLI -1 -unknown-to-any-file\x01";
    if (expected.contains(unknown))
        return;
    Check(Send(simulator, unknown)
              .bytes.ends_with("is not in FILE.\nSarvex tool RETURN CODE\n1\nDone"),
          "an unknown command is told");
    Check(!problems.str().empty(), "an unknown command is told on the console");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = ToText(data, size);
    std::istringstream lines(input);
    std::shared_ptr<const Recording> pRecording;
    try {
        pRecording = std::make_shared<Recording>(lines, "FILE");
    } catch (const std::invalid_argument& error) {
        CheckRefusal(input, error.what());
        return 0;
    }
    if (!HasBase64(input))
        CheckReplay(pRecording, PlainAnswers(input));
    return 0;
}
