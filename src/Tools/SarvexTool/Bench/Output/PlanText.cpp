#include "Tools/SarvexTool/Bench/Output/PlanText.h"

#include <cmath>
#include <cstdint>

namespace Bench {

namespace {

std::string Counted(std::size_t count, const std::string& what) {
    return (count == 0 ? "no" : std::to_string(count)) + " " + what + (count == 1 ? "" : "s");
}

} // namespace

std::string DurationText(double seconds) {
    constexpr std::uint64_t perMinute = 60;
    constexpr std::uint64_t perHour = 3600;
    const auto whole = static_cast<std::uint64_t>(std::llround(seconds));
    std::string text;
    if (whole >= perHour)
        text += std::to_string(whole / perHour) + " h ";
    if (whole >= perMinute)
        text += std::to_string(whole % perHour / perMinute) + " min ";
    return text + std::to_string(whole % perMinute) + " s";
}

std::string PlanText(const Plan& plan, double seconds) {
    const std::string atLeast = plan.configurationsOfUnknownChains > 0 ? "at least " : "";
    return Counted(plan.configurations, "configuration") + ", " + atLeast +
           Counted(plan.measurements + plan.configurationsOfUnknownChains, "measurement") +
           "; a run takes about " + DurationText(seconds);
}

std::string ChunksText(const std::vector<LineRange>& chunks, const RunConditions& conditions) {
    const LineNumber largest = chunks.front().Count();
    const LineNumber smallest = chunks.back().Count();
    const auto about = [&](std::size_t benches) {
        return "about " + DurationText(EstimateSeconds(chunks, benches, conditions));
    };
    std::string text = Counted(chunks.size(), "chunk") + " of " +
                       (smallest == largest ? "" : std::to_string(smallest) + " or ") +
                       Counted(largest, "line") + ", " + (chunks.size() == 1 ? "" : "each ") +
                       about(chunks.size()) + "; " + about(1) + " on 1 bench";
    for (std::size_t benches = 4; benches < chunks.size() && benches <= 64; benches *= 4)
        text += ", " + about(benches) + " on " + std::to_string(benches);
    return text;
}

std::string ProblemCountsText(std::size_t errors, std::size_t warnings) {
    return Counted(errors, "error") + ", " + Counted(warnings, "warning");
}

} // namespace Bench
