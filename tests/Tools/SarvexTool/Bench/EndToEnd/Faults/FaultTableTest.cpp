#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/RunProbe.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <ostream>
#include <thread>
#include <vector>

// Each fault of the simulated daemon on each kind of exchange, once and always. Whatever the daemon
// does, the run ends, and a stop follows each start.

namespace Bench {
namespace {

/// How a run ends.
struct Expected {
    int exitCode;
    /// What the daemon gets, in the letters of LetterOf: repeats are seen in them.
    const char* exchanges;
    const char* outcomes;
};

/// The exchanges that a fault is to hit.
struct Target {
    const char* name;
    /// As the rules of the simulated daemon name them.
    const char* which;
};

constexpr std::array<Target, 10> targets{{{"first command, once", "1"},
                                          {"first command, always", "text=-no_automation"},
                                          {"MAC type, once", "2"},
                                          {"MAC type, always", "text=-wifi-get-mac-type"},
                                          {"country code, once", "3"},
                                          {"country code, always", "text=-wifi-get-mcc"},
                                          {"start, once", "4"},
                                          {"start, always", "text=-wifi-start"},
                                          {"stop, once", "5"},
                                          {"stop, always", "text=-wifi-stop"}}};

/// How the runs with a fault end, target by target.
using Effects = std::array<Expected, targets.size()>;

constexpr const char* bothMeasured = "2 measured, measured; 3 measured, measured";
constexpr Expected undisturbed{0, "fmcSxSx", bothMeasured};

constexpr Effects none{undisturbed, undisturbed, undisturbed, undisturbed, undisturbed,
                       undisturbed, undisturbed, undisturbed, undisturbed, undisturbed};

/// No whole answer: the command is repeated after a stop, twice. Then a line is recorded so; where
/// there is no line yet, or where it is the stop, the run ends.
constexpr Effects NoAnswer(const char* bothMissing) {
    return {{{0, "fxfmcSxSx", bothMeasured},
             {3, "fxfxfx", ""},
             {0, "fmxmcSxSx", bothMeasured},
             {3, "fmxmxmx", ""},
             {0, "fmcxcSxSx", bothMeasured},
             {3, "fmcxcxcx", ""},
             {0, "fmcSxSxSx", bothMeasured},
             {1, "fmcSxSxSxxSxSxSxx", bothMissing},
             // Whether the settings are still there is not known then.
             {0, "fmcSxxrSx", bothMeasured},
             {4, "fmcSxxx+", ""}}};
}

constexpr Effects connectionLost =
    NoAnswer("2 connection lost, connection lost; 3 connection lost, connection lost");
constexpr Effects timeOut = NoAnswer("2 time-out, time-out; 3 time-out, time-out");

/// The answer says nothing for certain: all is well but the stop.
constexpr Effects WithStops(Effects effects, Expected always) {
    effects.back() = always;
    return effects;
}
constexpr Effects notConfirmed = WithStops(none, {4, "fmcSxSxx+", bothMeasured});

/// Only the answer to the start is another one.
constexpr Effects WithStarts(Effects effects, Expected once, Expected always) {
    effects[6] = once;
    effects[7] = always;
    return effects;
}
constexpr Effects chainMissing =
    WithStarts(none, {1, "fmcSxSx", "2 chain not active, measured; 3 measured, measured"},
               {1, "fmcSxSx", "2 chain not active, measured; 3 chain not active, measured"});
constexpr Effects uncalibrated =
    WithStarts(none, {1, "fmcSxSx", "2 uncalibrated, uncalibrated; 3 measured, measured"},
               {1, "fmcSxSx", "2 uncalibrated, uncalibrated; 3 uncalibrated, uncalibrated"});
/// A first command that is refused does not pass.
constexpr Effects WithRefusedFirst(Effects effects) {
    effects[0] = effects[1] = {1, "fmcSxSx", bothMeasured};
    return effects;
}
constexpr Effects refused = WithRefusedFirst(
    WithStarts(notConfirmed, {1, "fmcSxSx", "2 refused, refused; 3 measured, measured"},
               {1, "fmcSxSx", "2 refused, refused; 3 refused, refused"}));

/// The client itself ends of a return code that is no number, but asks no code of MAC type and
/// country code.
constexpr Effects clientEnds{{{3, "f", ""},
                              {3, "f", ""},
                              undisturbed,
                              undisturbed,
                              undisturbed,
                              undisturbed,
                              {3, "fmcSx", ""},
                              {3, "fmcSx", ""},
                              {3, "fmcSxx", ""},
                              {4, "fmcSxx+", ""}}};

struct FaultCase {
    const char* name;
    const char* fault;
    const Effects* pEffects;
    /// Whether the answer time-out has to be short for the fault to show.
    bool takesTime = false;
};

constexpr std::array<FaultCase, 18> faults{{
    {"CloseBefore", "close-before", &connectionLost},
    {"CloseInHead", "close-after=100", &connectionLost},
    {"Reset", "reset", &connectionLost},
    {"NoAnswer", "no-answer", &timeOut, true},
    {"ShortDelay", "delay=20", &none},
    {"LongDelay", "delay=600000", &timeOut, true},
    {"SplitMark", "split-mark", &none},
    {"Drip", "drip", &none},
    {"NoMark", "no-mark", &none},
    {"CrLf", "crlf", &notConfirmed},
    {"Nul", "nul=5", &connectionLost},
    {"Raw", "raw=answer.bin", &connectionLost},
    {"MissingChain", "missing-chain=A", &chainMissing},
    {"Uncalibrated", "uncalibrated", &uncalibrated},
    {"ReturnCode5", "return-code=5", &refused},
    {"ReturnCodeAbc", "return-code=abc", &clientEnds},
    {"Big", "big=1000000", &none},
    {"LongLine", "long-line=1000000", &none},
}};

void PrintTo(const FaultCase& fault, std::ostream* pStream) {
    *pStream << fault.fault;
}

/// What a run has shown.
struct Observed {
    EndToEnd::ProcessResult result;
    std::string exchanges;
    std::string outcomes;
};

std::vector<std::string> OptionsFor(const FaultCase& fault, const Expected& expected) {
    std::vector<std::string> options;
    if (fault.takesTime)
        options = {"--answer-timeout", "2"};
    // Elsewhere a busy machine must not shorten a run.
    if (expected.exitCode == 4)
        options.insert(options.end(), {"--wait", "2", "--stop-timeout", "3"});
    options.insert(options.end(), {"--", "-no_automation"});
    return options;
}

Observed Observe(const FaultCase& fault, const Target& target, const Expected& expected) {
    const RunProbe probe;
    probe.Write("answer.bin", "HTTP/1.1 200 OK\r\n\r\nnothing of the kind");
    std::string rule = std::string(target.which) + ":" + fault.fault;
    if (rule.ends_with("answer.bin"))
        rule = std::string(target.which) + ":raw=" + probe.Path("answer.bin");
    RestartableDaemon daemon;
    daemon.Start({"--fault", rule});
    Observed observed;
    observed.result = probe.Run(daemon.Address(), OptionsFor(fault, expected));
    observed.exchanges = daemon.Exchanges();
    observed.outcomes = probe.Outcomes();
    return observed;
}

std::vector<Observed> ObserveAll(const FaultCase& fault) {
    constexpr unsigned workers = 4;
    std::vector<Observed> observed(targets.size());
    std::atomic<std::size_t> next = 0;
    std::vector<std::jthread> threads;
    for (unsigned number = 0; number < workers; ++number) {
        threads.emplace_back([&] {
            for (std::size_t index = next++; index < targets.size(); index = next++) {
                observed[index] = Observe(fault, targets.at(index), fault.pEffects->at(index));
            }
        });
    }
    threads.clear();
    return observed;
}

class FaultTableTest : public testing::TestWithParam<FaultCase> {};

TEST_P(FaultTableTest, OnEachExchangeEndsTheRunAsItMust) {
    const std::vector<Observed> all = ObserveAll(GetParam());
    for (std::size_t index = 0; index < targets.size(); ++index) {
        const Expected& expected = GetParam().pEffects->at(index);
        const Observed& observed = all[index];
        SCOPED_TRACE(std::string(GetParam().fault) + " on the " + targets.at(index).name + "\n" +
                     observed.result.out + observed.result.err);
        EXPECT_FALSE(observed.result.timedOut) << "the run hung";
        EXPECT_EQ(observed.result.exitCode, expected.exitCode);
        EXPECT_TRUE(FitsExchanges(observed.exchanges, expected.exchanges))
            << observed.exchanges << " in place of " << expected.exchanges;
        EXPECT_EQ(observed.outcomes, expected.outcomes);
    }
}

INSTANTIATE_TEST_SUITE_P(Fault, FaultTableTest, testing::ValuesIn(faults),
                         [](const testing::TestParamInfo<FaultCase>& fault) {
                             return std::string(fault.param.name);
                         });

} // namespace
} // namespace Bench
