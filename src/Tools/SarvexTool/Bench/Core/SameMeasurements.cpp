#include "Tools/SarvexTool/Bench/Core/SameMeasurements.h"

#include <algorithm>
#include <utility>

namespace Bench {

namespace {

std::uint64_t HashOf(const RunResult& run, const Measurement& measurement) {
    auto hash = static_cast<std::uint64_t>(measurement.chain);
    for (const std::string* const text : run.SettingsOf(measurement))
        hash = HashWith(hash, text);
    return hash;
}

/// Sorts different measurements of one hash, of which there are hardly ever any: most with the same
/// hash are repeats, and in order.
void PartCollisions(const RunResult& run, std::vector<HashedMeasurement>& sorted) {
    const auto isDifferent = [&run](const HashedMeasurement& left, const HashedMeasurement& right) {
        return std::is_neq(Order(run, left, run, right));
    };
    for (auto begin = sorted.begin(); begin != sorted.end();) {
        const auto end = std::find_if(begin, sorted.end(), [begin](const HashedMeasurement& next) {
            return next.hash != begin->hash;
        });
        if (std::adjacent_find(begin, end, isDifferent) != end)
            std::stable_sort(begin, end, [&run](const auto& left, const auto& right) {
                return std::is_lt(Order(run, left, run, right));
            });
        begin = end;
    }
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
              [](const HashedMeasurement& left, const HashedMeasurement& right) {
                  return std::pair(left.hash, left.place) < std::pair(right.hash, right.place);
              });
    PartCollisions(run, grouped);
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
