// What filing a line in the result tree costs when many lines have been filed before: the tree's
// breadth is fixed, so that the cost must be too.

#include "Tools/Vemo/VemoClient/DynamicTest/DynamicTest.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace {

/// A line of a file over three bands, four bandwidths, five channels and six rates, with its
/// powers.
std::string ExtendedLine(int number) {
    return "band" + std::to_string(number % 3) + ",bandwidth" + std::to_string(number % 4) +
           ",channel" + std::to_string(number % 5) + ",rate" + std::to_string(number % 6) +
           ",A,17.5,NA";
}

/// A test that has filed so many lines.
std::unique_ptr<DynamicTest> TestAfter(int lines) {
    auto test = std::make_unique<DynamicTest>("");
    test->BuildColumnIndex({"Band", "Bandwidth", "Channel", "Rate", "Chains"});
    for (int line = 0; line < lines; ++line)
        test->SaveResultsToXml(ExtendedLine(line));
    return test;
}

void FileLinesAfter(benchmark::State& state) {
    constexpr int filedLines = 1000;
    for (auto _ : state) {
        state.PauseTiming();
        const auto lines = static_cast<int>(state.range(0));
        std::unique_ptr<DynamicTest> test = TestAfter(lines);
        state.ResumeTiming();
        for (int line = lines; line < lines + filedLines; ++line)
            test->SaveResultsToXml(ExtendedLine(line));
        state.PauseTiming();
        test.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * filedLines);
}
BENCHMARK(FileLinesAfter)->Arg(100)->Arg(1000)->Arg(10'000);

} // namespace

BENCHMARK_MAIN();
