// Property: any command line of the simulated daemon is either taken, and then every option is
// within its limits and a number is the decimal number that was written, or it ends the program
// with the help text (exit code 0) or one complaint (exit code 2). Whatever faults it names, an
// answer is sent as they say: never longer than the cut, in pieces only where a fault asks for
// them.
//
// Input: the words of the command line, one record each.

#include "Tools/Vemo/VemoSimulator/Answer.h"
#include "Tools/Vemo/VemoSimulator/Options.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"

#include <algorithm>

namespace {

using namespace VemoSimulator;

bool IsDecimal(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

/// Without the zeros in front.
std::string Significant(const std::string& digits) {
    const std::size_t first = digits.find_first_not_of('0');
    return first == std::string::npos ? "0" : digits.substr(first);
}

/// The options that take a number, as they were read.
std::string NumberOf(const Options& options, const std::string& name) {
    if (name == "--port")
        return std::to_string(options.port.value_or(0));
    if (name == "--body-limit")
        return std::to_string(options.bodyLimit);
    if (name == "--seed")
        return std::to_string(options.simulator.seed);
    if (name == "--noise")
        return std::to_string(options.simulator.noise);
    if (name == "--latency")
        return std::to_string(options.simulator.latency.count());
    return "";
}

void CheckNumber(const Options& options, const std::string& name, const std::string& text) {
    const std::string number = NumberOf(options, name);
    if (number.empty())
        return;
    Check(IsDecimal(text), "a number has decimal digits and nothing else");
    CheckEqual(number, Significant(text), "a number is the decimal number that was written");
}

void CheckLimits(const Options& options) {
    const Simulator::Settings& settings = options.simulator;
    Check(settings.noise <= 10'000, "the noise is within its limit");
    Check(settings.latency.count() <= 86'400'000, "the latency is within its limit");
    Check(IsDecimal(settings.identity.macType) && settings.identity.macType.size() <= 10,
          "the MAC type has one to ten digits");
    CheckEqual(settings.identity.countryCode.size(), std::size_t{2},
               "the country code has two characters");
}

void CheckDelivery(const AnswerPlan& plan, const std::string& answer) {
    const Delivery delivery = PlanDelivery(plan, answer);
    const std::size_t limit = plan.cutAfter.value_or(answer.size());
    CheckEqual(delivery.bytes.size(), std::min<std::size_t>(limit, answer.size()),
               "an answer is as long as the cut allows");
    Check(answer.starts_with(delivery.bytes), "a cut leaves the beginning");
    Check(delivery.firstPiece > 0 && delivery.nextPieces > 0, "no piece is empty");
    Check(plan.isDripped || plan.isMarkApart || delivery.firstPiece >= delivery.bytes.size(),
          "an answer is sent whole unless a fault cuts it up");
}

void CheckFaults(const std::vector<FaultRule>& faults) {
    constexpr std::uint64_t largest = 100'000;
    AnswerPlan plan;
    for (const FaultRule& fault : faults) {
        if (fault.Matches(1, "CLI -1 -vemo -wifi-start"))
            fault.ApplyTo(plan);
    }
    if (plan.fillerBytes > largest || plan.longLineBytes > largest)
        return;
    const Reply reply =
        ApplyToReply(plan, {{"Target Power: Chain A (1) 1 dBm", "a line"}, {"an error"}, "3"});
    const std::string answer = BuildAnswer(plan, reply);
    Check(plan.returnCode || reply.returnCode == "3",
          "the return code is the reply's or a fault's");
    CheckEqual(answer.ends_with("Done"), plan.hasEndMark,
               "an answer has its end mark unless a fault takes it");
    CheckDelivery(plan, answer);
}

void CheckOptions(const Options& options, const std::vector<std::string>& words) {
    CheckLimits(options);
    CheckFaults(options.simulator.faults);
    if (words.size() == 2)
        CheckNumber(options, words[0], words[1]);
}

void CheckEarlyEnd(const EarlyEnd& end) {
    if (end.exitCode == 0)
        Check(!end.output.empty() && end.error.empty(), "the help text is output");
    else
        Check(end.exitCode == 2 && end.output.empty() && end.error.starts_with("vemo: "),
              "a wrong command line is complained about");
}

/// Such a word makes it read a file, which may be anything.
bool NamesAFile(const std::string& word) {
    return word.find("raw") != std::string::npos || word.starts_with("--replay");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::string> words = Split(ToText(data, size), RecordSeparator);
    if (std::ranges::any_of(words, NamesAFile))
        return 0;
    const auto parsed = ParseOptions(words);
    if (const auto* const pEnd = std::get_if<EarlyEnd>(&parsed))
        CheckEarlyEnd(*pEnd);
    else
        CheckOptions(std::get<Options>(parsed), words);
    return 0;
}
