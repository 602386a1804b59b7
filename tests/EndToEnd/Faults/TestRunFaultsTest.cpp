#include "tests/EndToEnd/Faults/Runner.h"

#include <gtest/gtest.h>

#include <functional>
#include <tuple>

// A test run of two lines in which the daemon fails at one exchange or for good.

namespace EndToEnd::Faults {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

const std::string powerA = "Target Power: x Chain A (1) 17.5 dBm\n";
const std::string powerB = "Target Power: x Chain B (2) 18 dBm\n";

/// One exchange of the run: what the client says before it, the command that it sends and what a
/// daemon in order answers.
struct Turn {
    std::string announcement;
    std::string command;
    std::string answer;
};

const std::string start = " -wifi-calibrate-tx -wifi-mode tx_modulated -wifi-start";
const std::vector<Turn> turns = {
    {"", "CLI -1 ", "ok"},
    {"", "CLI -1 -vemo -wifi-get-mac-type", "Mac Type: 7"},
    {"", "CLI -1 -vemo -wifi-get-mcc", "Current MCC: US"},
    {"Commiting and testing follwing config:\nBand = 5, \n", "CLI -1 -vemo -wifi-band 5" + start,
     powerA + powerB},
    {"", "CLI -1 -vemo -wifi-stop", "ok"},
    {"Commiting and testing follwing config:\nBand = 6, \n", "CLI -1 -vemo -wifi-band 6" + start,
     powerA + powerB},
    {"", "CLI -1 -vemo -wifi-stop", "ok"},
};
constexpr std::size_t macType = 1;
constexpr std::size_t country = 2;
constexpr std::size_t firstStart = 3;
constexpr std::size_t firstStop = 4;
constexpr std::size_t secondStart = 5;
constexpr std::size_t secondStop = 6;

/// What a run has left up to some exchange, one exchange added after the other.
class ExpectedRun {
public:
    /// The client makes the next exchange and prints this.
    void Answered(const std::string& out) {
        m_outcome.out += turns[m_commands.size()].announcement + out;
        m_commands.push_back(turns[m_commands.size()].command);
    }
    void AnsweredInOrder() { Answered(turns[m_commands.size()].answer + "\n"); }

    /// The client comes to the exchange with this number and cannot make it.
    void FailAt(std::size_t number) {
        m_outcome.out += turns[number].announcement;
        Complain("Failed to calcualte Tx Power limit: Failed Sending message.");
        EndWith(1);
    }

    void Header() { m_outcome.rows = "Band,Chain-A Power, Chain B Power\n"; }
    void Row(const std::string& row) { m_outcome.rows += row + "\n"; }
    void Complain(const std::string& message) { m_outcome.err += message; }
    void EndWith(int exitCode) { m_outcome.exitCode = exitCode; }

    Scenario WithScripts(const std::string& name, const std::vector<Script>& scripts) const {
        return {.name = name,
                .scripts = scripts,
                .permitted = {m_outcome},
                .commands = m_commands,
                .arguments = {"-wifi-test-by-file", "test.csv"},
                .testFile = "Band\n5\n6\n",
                .client = "SarvexToolClientWithoutPauses"};
    }

private:
    Outcome m_outcome;
    std::vector<std::string> m_commands;
};

/// What an exchange does to the run.
struct Effect {
    /// What the client prints of the answer.
    std::string out;
    /// The powers that a start gets out of the answer.
    std::string powers = ",17.5,18";
    /// Not empty: the exchange fails with this reason.
    std::string failure = {};
};

/// Adds the exchange with this number, in which the answer has the effect; false when it ends the
/// run.
bool AddTurn(ExpectedRun& run, std::size_t number, const Effect& effect, std::string& powers) {
    run.Answered(effect.out);
    if (!effect.failure.empty() && number == 0) {
        run.Complain("Failed to handle commands.\n");
        run.EndWith(256);
        return false;
    }
    // The queries' failures are absorbed.
    if (!effect.failure.empty() && number == macType)
        run.Complain("-wifi-get-mac-type command failed: " + effect.failure + ".");
    else if (!effect.failure.empty() && number == country)
        run.Complain("-wifi-get-mcc command failed: " + effect.failure + ".");
    if (number == country)
        run.Header();
    if (!effect.failure.empty() && number >= firstStart) {
        run.Complain("Failed to calcualte Tx Power limit: " + effect.failure + ".");
        run.EndWith(1);
        return false;
    }
    if (number == firstStart || number == secondStart)
        powers = effect.powers;
    if (number == firstStop || number == secondStop)
        run.Row((number == firstStop ? "5" : "6") + powers);
    return true;
}

Effect InOrder(std::size_t number) {
    return {turns[number].answer + "\n"};
}

Script AnswerInOrder(std::size_t number) {
    return {TakeRequest(), Send(turns[number].answer + "Done")};
}

/// A run in which one exchange has a fault.
Scenario FaultAt(std::size_t faulty, const std::string& name, const Script& reaction,
                 const Effect& effect) {
    ExpectedRun run;
    std::vector<Script> scripts;
    std::string powers;
    bool goesOn = true;
    for (std::size_t number = 0; number < turns.size() && goesOn; ++number) {
        const bool isFaulty = number == faulty;
        scripts.push_back(isFaulty ? Script{TakeRequest()} : AnswerInOrder(number));
        if (isFaulty)
            scripts.back().insert(scripts.back().end(), reaction.begin(), reaction.end());
        goesOn = AddTurn(run, number, isFaulty ? effect : InOrder(number), powers);
    }
    return run.WithScripts(name + " at exchange " + std::to_string(faulty), scripts);
}

TEST(TestRunFaultsTest, ExchangeThatGoesWrongOnce) {
    const Effect empty{"\n", ",NA,NA"};
    const std::string badCode = "hello\nSarvex tool RETURN CODE\n";
    std::vector<Scenario> scenarios;
    for (std::size_t number = 0; number < turns.size(); ++number) {
        const std::string answer = turns[number].answer;
        scenarios.push_back(FaultAt(number, "closes without an answer", {Close()}, empty));
        scenarios.push_back(FaultAt(number, "resets without an answer", {Reset()}, empty));
        scenarios.push_back(FaultAt(number, "answers with a NUL", {Send("\0hello"s)}, empty));
        scenarios.push_back(FaultAt(number, "answers with rubbish",
                                    {Send("\xFF\xFE\x01"), FinishSending()},
                                    {"\xFF\xFE\x01\n", ",NA,NA"}));
        scenarios.push_back(FaultAt(number, "sends the mark apart and closes",
                                    {Send(answer), SendApart("Done"), Close()},
                                    {answer + "Done\n"}));
        scenarios.push_back(FaultAt(number, "resets after an answer without a mark",
                                    {Send(answer), AwaitTaken(), Reset()}, InOrder(number)));
        scenarios.push_back(FaultAt(number, "answers with the code of an error",
                                    {Send(answer + "\nSarvex tool RETURN CODE\n3Done")},
                                    {answer + "\n"}));
        scenarios.push_back(FaultAt(number, "answers with a code that is none",
                                    {Send(badCode + "abcDone")},
                                    {"", "", "invalid stoi argument"}));
        scenarios.push_back(FaultAt(number, "answers with a code out of range",
                                    {Send(badCode + "2147483648Done")},
                                    {"", "", "stoi argument out of range"}));
    }
    RunAll(scenarios);
}

TEST(TestRunFaultsTest, AnswerWithThePowersThatBreaksOff) {
    struct Row {
        std::size_t size;
        const char* powers;
    };
    const std::string answer = powerA + powerB;
    ASSERT_EQ(powerA.size(), 37u);
    ASSERT_EQ(answer.size(), 72u);
    // The number counts when its unit has come.
    const Row rows[] = {{1, ",NA,NA"},    {28, ",NA,NA"},   {33, ",NA,NA"},
                        {35, ",NA,NA"},   {36, ",17.5,NA"}, {37, ",17.5,NA"},
                        {65, ",17.5,NA"}, {70, ",17.5,NA"}, {71, ",17.5,18"}};
    std::vector<Scenario> scenarios;
    for (const Row& row : rows) {
        const std::string beginning = answer.substr(0, row.size);
        const Effect effect{beginning + "\n", row.powers};
        const std::string after = " after byte " + std::to_string(row.size);
        scenarios.push_back(
            FaultAt(firstStart, "closes" + after, {Send(beginning), Close()}, effect));
        scenarios.push_back(FaultAt(secondStart, "resets" + after,
                                    {Send(beginning), AwaitTaken(), Reset()}, effect));
    }
    const std::string crLf = "Target Power: x Chain A (1) 17.5 dBm\r\n";
    scenarios.push_back(FaultAt(firstStart, "lines that end in CR LF", {Send(crLf + "Done")},
                                {crLf + "\n", ",17.5,NA"}));
    scenarios.push_back(
        FaultAt(secondStart, "powers byte by byte", {Drip(answer), Close()}, {answer + "\n"}));
    scenarios.push_back(
        FaultAt(secondStart, "NUL inside the power of chain B",
                {Send(powerA + "Target Power: x \0 Chain B (2) 18 dBm\n"s), FinishSending()},
                {powerA + "Target Power: x \n", ",17.5,NA"}));
    scenarios.push_back(FaultAt(macType, "MAC type without digits", {Send("Mac Type: \nDone")},
                                {"Mac Type: \n\n", "", "invalid stoi argument"}));
    scenarios.push_back(FaultAt(macType, "MAC type out of range",
                                {Send("Mac Type: 99999999999\nDone")},
                                {"Mac Type: 99999999999\n\n", "", "stoi argument out of range"}));
    scenarios.push_back(
        FaultAt(macType, "MAC type cut by a close", {Send("Mac Type:"), Close()}, {"Mac Type:\n"}));
    RunAll(scenarios);
}

/// The expectations and the scripts of the exchanges before this one, all in order.
struct Beginning {
    explicit Beginning(std::size_t number) {
        for (std::size_t before = 0; before < number; ++before) {
            scripts.push_back(AnswerInOrder(before));
            AddTurn(run, before, InOrder(before), powers);
        }
    }

    ExpectedRun run;
    std::vector<Script> scripts;
    std::string powers;
};

/// The daemon answers the exchange before this one without a mark, closes that connection and
/// listens no more: there is nothing left on which the client could send.
Scenario GoneBefore(std::size_t number) {
    Beginning beginning(number);
    beginning.scripts.back() = {TakeRequest(), StopListening(), Send(turns[number - 1].answer),
                                Close()};
    std::size_t fatal = number;
    if (number == country) {
        beginning.run.Complain("-wifi-get-mcc command failed: Failed Sending message.");
        beginning.run.Header();
        fatal = firstStart;
    }
    beginning.run.FailAt(fatal);
    return beginning.run.WithScripts("gone before exchange " + std::to_string(number),
                                     beginning.scripts);
}

TEST(TestRunFaultsTest, DaemonThatIsGoneForGood) {
    std::vector<Scenario> scenarios;
    for (std::size_t number = country; number < turns.size(); ++number)
        scenarios.push_back(GoneBefore(number));
    // Without any connection of its own the run has nothing to send on and asks nobody.
    ExpectedRun run;
    run.Answered("ok\n");
    Scenario atOnce = run.WithScripts("gone before exchange 1",
                                      {{TakeRequest(), StopListening(), Send("ok"), Close()}});
    atOnce.permitted = {{.out = "ok\n\n\n" + turns[firstStart].announcement + "\n\n" +
                                turns[secondStart].announcement + "\n\n",
                         .rows = "Band,Chain-A Power, Chain B Power\n5,NA,NA\n6,NA,NA\n"}};
    scenarios.push_back(atOnce);
    RunAll(scenarios);
}

TEST(TestRunFaultsTest, DaemonThatListensNoMoreAndServesItsLastConnection) {
    std::vector<Scenario> scenarios;
    for (std::size_t number = country; number < turns.size(); ++number) {
        Beginning all(turns.size());
        all.scripts.resize(number);
        // The client cannot connect and sends on the connection that it has.
        Script& last = all.scripts.back();
        last = {TakeRequest(), StopListening(), Send(turns[number - 1].answer + "Done")};
        for (std::size_t further = number; further < turns.size(); ++further) {
            last.push_back(TakeRequest());
            last.push_back(Send(turns[further].answer + "Done"));
        }
        scenarios.push_back(
            all.run.WithScripts("serves on from exchange " + std::to_string(number), all.scripts));
    }
    RunAll(scenarios);
}

TEST(TestRunFaultsTest, DaemonThatListensNoMoreAndEndsItsLastConnectionInsideTheNextExchange) {
    std::vector<Scenario> scenarios;
    for (std::size_t number = country; number < turns.size(); ++number) {
        for (const auto& [name, ending] : {std::pair{"closes", Close()}, {"resets", Reset()}}) {
            Beginning beginning(number);
            beginning.scripts.back() = {TakeRequest(), StopListening(),
                                        Send(turns[number - 1].answer + "Done"), TakeRequest(),
                                        ending};
            AddTurn(beginning.run, number, {"\n", ",NA,NA"}, beginning.powers);
            if (number + 1 < turns.size())
                beginning.run.FailAt(number + 1);
            scenarios.push_back(beginning.run.WithScripts(
                name + " inside exchange "s + std::to_string(number), beginning.scripts));
        }
    }
    RunAll(scenarios);
}

TEST(TestRunFaultsTest, DaemonThatComesBackWithinTheAttempts) {
    std::vector<Scenario> scenarios;
    for (const std::size_t number : {macType, country, firstStop, secondStart}) {
        Beginning all(turns.size());
        // Twenty attempts have twenty pauses of 20 ms.
        all.scripts[number - 1] = {TakeRequest(), StopListening(), Send(turns[number - 1].answer),
                                   Close(),       Silence(60ms),   ListenAgain()};
        scenarios.push_back(all.run.WithScripts(
            "comes back before exchange " + std::to_string(number), all.scripts));
        scenarios.back().client = "SarvexToolClient";
    }
    RunAll(scenarios);
}

TEST(TestRunFaultsTest, RequestTooLargeForTheNetworkIsBrokenOff) {
    // More than both systems' buffers hold: the client is still sending when the connection breaks.
    const std::string cell(16 << 20, '5');
    std::vector<Scenario> scenarios;
    const std::tuple<const char*, std::size_t, Step> breaks[] = {
        {"closes", 0, Close()}, {"resets", 513, Reset()}, {"closes", 600'000, Close()}};
    for (const auto& [name, size, ending] : breaks) {
        Beginning beginning(firstStart);
        beginning.scripts.push_back({Take(size), ending});
        beginning.run.Complain("Failed to calcualte Tx Power limit: Failed Sending message.");
        beginning.run.EndWith(1);
        scenarios.push_back(beginning.run.WithScripts(name + " after byte "s + std::to_string(size),
                                                      beginning.scripts));
        Scenario& scenario = scenarios.back();
        scenario.testFile = "Band\n" + cell + "\n";
        scenario.requestIsCut = true;
        scenario.commands.push_back("CLI -1 -vemo -wifi-band " + cell + start);
        scenario.permitted[0].out +=
            "Commiting and testing follwing config:\nBand = " + cell + ", \n";
    }
    RunAll(scenarios);
}

} // namespace
} // namespace EndToEnd::Faults
