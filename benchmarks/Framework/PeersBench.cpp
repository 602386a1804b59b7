// Times the framework's building blocks beside what others offer for the same: fmt for messages,
// pugixml for element trees.

#include "Modules/xFramework/Core/Classes/StartUpRegistration.h"
#include "Modules/xFramework/Utilities/Format.h"
#include "Modules/xFramework/XML/Base.h"
#include "Modules/xFramework/XML/Writer.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <pugixml.hpp>

#include <chrono>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

namespace {

const std::string column = "Channel";
const std::string cell = "36";

void FormatTwoArguments(benchmark::State& state) {
    const std::string pattern = "${1} = ${2}, ";
    for (auto _ : state) {
        const Utilities::Format message(pattern, column, cell);
        benchmark::DoNotOptimize(message.Text().data());
    }
}
BENCHMARK(FormatTwoArguments);

void FmtTwoArguments(benchmark::State& state) {
    const std::string pattern = "{0} = {1}, ";
    for (auto _ : state) {
        const std::string message = fmt::format(fmt::runtime(pattern), column, cell);
        benchmark::DoNotOptimize(message.data());
    }
}
BENCHMARK(FmtTwoArguments);

constexpr int million = 1'000'000;

/// A tree of a million elements, a hundred a parent, each with two attributes or bare.
constexpr int elementsAParent = 100;

void BuildNodes(XML::Base& document, bool hasAttributes) {
    XML::Node* const root = document.GetTopNode()->AddChild("Root");
    XML::Node* parent = nullptr;
    for (int element = 0; element < million; ++element) {
        if (element % elementsAParent == 0)
            parent = root->AddChild("Parent");
        XML::Node* const child = parent->AddChild("Child");
        if (hasAttributes) {
            child->SetAttribute("power", "17.5dBm");
            child->SetAttribute("value", "36");
        }
    }
}

void BuildPugi(pugi::xml_document& document, bool hasAttributes) {
    pugi::xml_node root = document.append_child("Root");
    pugi::xml_node parent;
    for (int element = 0; element < million; ++element) {
        if (element % elementsAParent == 0)
            parent = root.append_child("Parent");
        pugi::xml_node child = parent.append_child("Child");
        if (hasAttributes) {
            child.append_attribute("power").set_value("17.5dBm");
            child.append_attribute("value").set_value("36");
        }
    }
}

void BuildTree(benchmark::State& state) {
    for (auto _ : state) {
        auto document = std::make_unique<XML::Base>();
        BuildNodes(*document, state.range(0) != 0);
        state.PauseTiming();
        document.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BuildTree)->ArgName("attributes")->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);

void BuildTreeWithPugixml(benchmark::State& state) {
    for (auto _ : state) {
        auto document = std::make_unique<pugi::xml_document>();
        BuildPugi(*document, state.range(0) != 0);
        state.PauseTiming();
        document.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BuildTreeWithPugixml)
    ->ArgName("attributes")
    ->Arg(0)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond);

void WriteTree(benchmark::State& state) {
    XML::Base document;
    BuildNodes(document, state.range(0) != 0);
    for (auto _ : state) {
        std::ostringstream out;
        XML::Writer writer(out);
        document.Save(writer);
        benchmark::DoNotOptimize(out.tellp());
    }
}
BENCHMARK(WriteTree)->ArgName("attributes")->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);

void WriteTreeWithPugixml(benchmark::State& state) {
    pugi::xml_document document;
    BuildPugi(document, state.range(0) != 0);
    for (auto _ : state) {
        std::ostringstream out;
        document.save(out);
        benchmark::DoNotOptimize(out.tellp());
    }
}
BENCHMARK(WriteTreeWithPugixml)
    ->ArgName("attributes")
    ->Arg(0)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    using Clock = std::chrono::steady_clock;
    // Once in a process, as at the client's start.
    const Clock::time_point start = Clock::now();
    Core::RegisterAtStartUp();
    const std::chrono::duration<double, std::milli> time = Clock::now() - start;
    std::cout << "start-up registration: " << time.count() << " ms" << std::endl;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
