#include "Tools/SarvexTool/Bench/Core/SameMeasurements.h"

#include <algorithm>

namespace Bench {

namespace {

std::uint64_t HashOf(const RunResult& run, const Measurement& measurement) {
    auto hash = static_cast<std::uint64_t>(measurement.chain);
    for (const std::string* const text : run.SettingsOf(measurement))
        hash = HashWith(hash, text);
    return hash;
}

} // namespace

std::strong_ordering Order(const RunResult& leftRun, const HashedMeasurement& left,
                           const RunResult& rightRun, const HashedMeasurement& right) {
    if (left.hash != right.hash)
        return left.hash <=> right.hash;
    const Measurement& first = leftRun.measurements[left.place];
    const Measurement& second = rightRun.measurements[right.place];
    if (const auto chains = first.chain <=> second.chain; std::is_neq(chains))
        return chains;
    // Texts of one pool are told apart by their addresses.
    const Settings& firstSettings = leftRun.SettingsOf(first);
    const Settings& secondSettings = rightRun.SettingsOf(second);
    return std::lexicographical_compare_three_way(firstSettings.begin(), firstSettings.end(),
                                                  secondSettings.begin(), secondSettings.end(),
                                                  std::compare_three_way());
}

std::vector<HashedMeasurement> Grouped(const RunResult& run) {
    std::vector<HashedMeasurement> grouped;
    grouped.reserve(run.measurements.size());
    for (const Measurement& measurement : run.measurements)
        grouped.push_back({HashOf(run, measurement), static_cast<std::uint32_t>(grouped.size())});
    std::sort(grouped.begin(), grouped.end(),
              [&run](const HashedMeasurement& left, const HashedMeasurement& right) {
                  const std::strong_ordering order = Order(run, left, run, right);
                  return std::is_eq(order) ? left.place < right.place : std::is_lt(order);
              });
    return grouped;
}

std::vector<std::uint32_t> RepeatNumbers(const RunResult& run) {
    const std::vector<HashedMeasurement> grouped = Grouped(run);
    std::vector<std::uint32_t> numbers(grouped.size(), 1);
    for (std::size_t index = 1; index < grouped.size(); ++index) {
        if (std::is_eq(Order(run, grouped[index - 1], run, grouped[index])))
            numbers[grouped[index].place] = numbers[grouped[index - 1].place] + 1;
    }
    return numbers;
}

} // namespace Bench
