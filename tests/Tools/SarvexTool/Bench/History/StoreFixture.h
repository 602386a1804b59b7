#pragma once

#include "Tools/SarvexTool/Bench/Files/KeptFiles.h"
#include "Tools/SarvexTool/Bench/Files/ResultFile.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Bench {

/// A run that is told by its rows, as "5,AB,10.5,NA\n".
inline RunToKeep MakeRun(const std::string& rows, TextPool& texts, KeptFacts facts = {}) {
    RunToKeep run;
    const std::string table = "Band,Chains,Chain-A Power, Chain B Power\n" + rows;
    run.files = {{"client.log", std::string("\0\xFF\n", 3)}, {"result.csv", table}};
    run.result = ParseResult(table, "result.csv", texts);
    run.facts = std::move(facts);
    run.facts.hash = HashOf(run.files);
    if (run.facts.name.empty())
        run.facts.name = "short.csv";
    if (run.facts.parts.empty())
        run.facts.parts.push_back({run.facts.bench, run.facts.device, std::nullopt});
    run.facts.lines = run.result.configurations.size();
    run.facts.measurements = run.result.measurements.size();
    for (const Measurement& measurement : run.result.measurements)
        run.facts.measured += std::uint64_t{measurement.power.has_value()};
    run.parts.assign(run.facts.lines, 0);
    return run;
}

} // namespace Bench
