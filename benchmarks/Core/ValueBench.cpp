#include "Modules/xFramework/Core/Classes/Namespace.h"
#include "Modules/xFramework/Core/Classes/ServiceDomain.h"
#include "Modules/xFramework/Core/Classes/Value.h"
#include "Modules/xFramework/Utilities/Format.h"

#include <benchmark/benchmark.h>

#include <list>
#include <memory>
#include <string>

// What the client and the test do with values, each beside what the same costs without the
// framework. Program: core_bench --benchmark_filter=Copy

namespace {

const std::string longText = "-wifi-set-modulated-tx-configuration";

void CopyOfAValue(benchmark::State& state) {
    const Core::Value value(longText);
    for (auto _ : state) {
        Core::Value copy(value);
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(CopyOfAValue);

void CopyOfASharedText(benchmark::State& state) {
    const auto text = std::make_shared<const std::string>(longText);
    for (auto _ : state) {
        auto copy = text;
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(CopyOfASharedText);

void CopyOfAText(benchmark::State& state) {
    for (auto _ : state) {
        std::string copy = longText;
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(CopyOfAText);

void ValueFromText(benchmark::State& state) {
    for (auto _ : state) {
        Core::Value value(longText);
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(ValueFromText);

void ValueFromTypedLiteral(benchmark::State& state) {
    const std::string literal = "{uint16:0x10}";
    for (auto _ : state) {
        Core::Value value(literal);
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(ValueFromTypedLiteral);

/// The search for an option in an argument list, as the client does it.
void OptionInAList(benchmark::State& state) {
    const std::list<Core::Value> arguments(static_cast<std::size_t>(state.range(0)),
                                           Core::Value(longText));
    const std::string option = "-remoteDaemon";
    for (auto _ : state) {
        int hits = 0;
        for (const Core::Value& argument : arguments)
            hits += argument == option ? 1 : 0;
        benchmark::DoNotOptimize(hits);
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(OptionInAList)->Range(8, 4096)->Complexity();

void ComparisonAcrossTypes(benchmark::State& state) {
    const Core::Value number("{int:5}");
    const Core::Value text("6");
    for (auto _ : state)
        benchmark::DoNotOptimize(number < text);
}
BENCHMARK(ComparisonAcrossTypes);

void MessageWithVariable(benchmark::State& state) {
    Core::GlobalVariables().Add("chain", new Core::Value("A"));
    for (auto _ : state) {
        const Utilities::Format message("Chain $(chain): ${1} dBm", "17.5");
        benchmark::DoNotOptimize(message.Text());
    }
}
BENCHMARK(MessageWithVariable);

void MessageWithoutVariable(benchmark::State& state) {
    for (auto _ : state) {
        const Utilities::Format message("Chain A: ${1} dBm", "17.5");
        benchmark::DoNotOptimize(message.Text());
    }
}
BENCHMARK(MessageWithoutVariable);

void ServiceByPath(benchmark::State& state) {
    Core::Namespace root;
    auto* const services = new Core::ServiceDomain;
    root.Add("Services", services);
    services->RegisterServiceClass<Core::Service>("Clock");
    for (auto _ : state)
        benchmark::DoNotOptimize(root.FindByPath("Services.Clock"));
}
BENCHMARK(ServiceByPath);

} // namespace
