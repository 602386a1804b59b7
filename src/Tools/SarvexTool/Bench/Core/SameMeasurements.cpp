#include "Tools/SarvexTool/Bench/Core/SameMeasurements.h"

#include <algorithm>

namespace Bench {

std::strong_ordering Order(const RunResult& leftRun, std::uint32_t left, const RunResult& rightRun,
                           std::uint32_t right) {
    const Measurement& first = leftRun.measurements[left];
    const Measurement& second = rightRun.measurements[right];
    if (const auto chains = first.chain <=> second.chain; std::is_neq(chains))
        return chains;
    // Texts of one pool are told apart by their addresses.
    const Settings& firstSettings = leftRun.SettingsOf(first);
    const Settings& secondSettings = rightRun.SettingsOf(second);
    return std::lexicographical_compare_three_way(firstSettings.begin(), firstSettings.end(),
                                                  secondSettings.begin(), secondSettings.end(),
                                                  std::compare_three_way());
}

std::vector<std::uint32_t> Grouped(const RunResult& run) {
    std::vector<std::uint32_t> places(run.measurements.size());
    for (std::size_t index = 0; index < places.size(); ++index)
        places[index] = static_cast<std::uint32_t>(index);
    std::stable_sort(places.begin(), places.end(), [&run](std::uint32_t left, std::uint32_t right) {
        return std::is_lt(Order(run, left, run, right));
    });
    return places;
}

std::vector<std::uint32_t> RepeatNumbers(const RunResult& run) {
    const std::vector<std::uint32_t> grouped = Grouped(run);
    std::vector<std::uint32_t> numbers(grouped.size(), 1);
    for (std::size_t index = 1; index < grouped.size(); ++index) {
        if (std::is_eq(Order(run, grouped[index - 1], run, grouped[index])))
            numbers[grouped[index]] = numbers[grouped[index - 1]] + 1;
    }
    return numbers;
}

} // namespace Bench
