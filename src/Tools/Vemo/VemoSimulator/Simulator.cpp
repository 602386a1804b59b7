#include "Tools/Vemo/VemoSimulator/Simulator.h"

#include "Tools/Vemo/VemoSimulator/Answer.h"
#include "Tools/Vemo/VemoSimulator/Text.h"

#include <algorithm>
#include <utility>

namespace VemoSimulator {

namespace {

constexpr const char* commandTarget = "/api/oemtools/command";

/// The command that ends this program whether the recorded daemon was ever sent it or not.
bool IsExit(const std::vector<std::string>& words) {
    return words.size() == 1 && EqualsIgnoringCase(words.front(), "-exit");
}

/// The command as a part of a message: a line end in it would begin a line of its own.
std::string InOneLine(std::string command) {
    std::ranges::replace_if(
        command, [](char character) { return character >= '\0' && character < ' '; }, ' ');
    return command;
}

} // namespace

Simulator::Simulator(const Settings& settings, std::ostream* pRequestLog, std::ostream& problemLog)
    : m_settings(settings),
      m_device(settings.identity, PowerModel(settings.seed, settings.noise, settings.offset)),
      m_pRequestLog(pRequestLog),
      m_problemLog(problemLog) {}

Delivery Simulator::Handle(const Request& request) {
    constexpr int badRequest = 400;
    constexpr int notFound = 404;
    if (request.target != commandTarget)
        return Refuse(request, notFound, std::string("Commands go to ") + commandTarget + ".");
    if (request.method != "POST")
        return Refuse(request, badRequest, "A command comes with the method POST.");
    const auto words = SplitCommand(request.body);
    if (!words)
        return Refuse(request, badRequest, "A command begins with \"CLI -1 \".");
    return Answer(request, *words);
}

Delivery Simulator::HandleInvalid(int httpStatus, const std::string& problem) {
    return Refuse({}, httpStatus, "This is no valid request: " + problem + ".");
}

Delivery Simulator::Answer(const Request& request, const std::vector<std::string>& words) {
    constexpr int ok = 200;
    ++m_commandCount;
    LogRecord record{m_commandCount, ok, "", 0, {}};
    AnswerPlan plan;
    plan.delay = m_settings.latency;
    for (const FaultRule& rule : m_settings.faults) {
        if (!rule.Matches(m_commandCount, request.body))
            continue;
        rule.ApplyTo(plan);
        record.faults.push_back(rule.Text());
    }
    const Answered answered =
        m_settings.pRecording ? AskRecording(plan, request.body, words) : AskDevice(plan, words);
    Delivery delivery = PlanDelivery(plan, answered.bytes);
    delivery.endsProgram = answered.endsProgram;
    record.returnCode = answered.returnCode;
    record.answerBytes = delivery.bytes.size();
    WriteLog(request, record);
    return delivery;
}

Simulator::Answered Simulator::AskDevice(const AnswerPlan& plan,
                                         const std::vector<std::string>& words) {
    const Reply reply = ApplyToReply(plan, m_device.Execute(words));
    return {BuildAnswer(plan, reply), reply.returnCode, reply.endsProgram};
}

Simulator::Answered Simulator::AskRecording(const AnswerPlan& plan, const std::string& command,
                                            const std::vector<std::string>& words) {
    const std::string* const pRecorded = NextRecorded(command);
    if (pRecorded != nullptr)
        return {plan.rawAnswer.value_or(*pRecorded), ReturnCodeIn(*pRecorded), IsExit(words)};
    if (IsExit(words))
        return AskDevice(plan, words);
    const std::string problem =
        "The command '" + InOneLine(command) + "' is not in " + m_settings.pRecording->Name() + ".";
    m_problemLog << problem << std::endl;
    const Reply reply{{}, {problem}, std::to_string(UnknownOptionCode), false};
    return {BuildAnswer(plan, reply), reply.returnCode, false};
}

const std::string* Simulator::NextRecorded(const std::string& command) {
    const std::vector<std::string>* const pAnswers = m_settings.pRecording->AnswersTo(command);
    if (pAnswers == nullptr)
        return nullptr;
    std::size_t& given = m_replayed[command];
    const std::size_t due = std::min(given, pAnswers->size() - 1);
    ++given;
    return &(*pAnswers)[due];
}

Delivery Simulator::Refuse(const Request& request, int httpStatus, const std::string& problem) {
    Delivery delivery;
    delivery.bytes = BuildRefusal(httpStatus, problem);
    m_problemLog << "Request refused: " << problem << std::endl;
    WriteLog(request, {0, httpStatus, "", delivery.bytes.size(), {}});
    return delivery;
}

void Simulator::WriteLog(const Request& request, const LogRecord& record) {
    if (m_pRequestLog == nullptr)
        return;
    // Before the answer goes out: whoever has the answer finds the line.
    *m_pRequestLog << FormatLogLine(request, record) << std::endl;
    if (*m_pRequestLog)
        return;
    m_problemLog << "The request log cannot be written; it ends here." << std::endl;
    m_pRequestLog = nullptr;
}

} // namespace VemoSimulator
