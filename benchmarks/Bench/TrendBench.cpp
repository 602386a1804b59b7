// Times what a trend over 1,000 runs of 1,000 measurements takes beside sorting as many powers, in
// this program's processor time: without the store that it comes from. Prints a row for few
// stations and one for many.
//
// usage: trend_bench [ROUNDS]

#include "Tools/SarvexTool/Bench/Core/Trend.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr std::uint32_t runCount = 1000;
constexpr std::uint32_t itemCount = 1000;

/// Runs of stations in turn, of which the last one drifts in its last runs.
Bench::TrendData DataOf(std::uint32_t stations) {
    constexpr double noise = 0.3;
    constexpr double drift = 0.8;
    constexpr std::uint32_t lastRuns = 200;
    Bench::TrendData data;
    std::mt19937 numbers(15);
    std::normal_distribution<double> deviation(0, noise);
    for (std::uint32_t station = 0; station < stations; ++station)
        data.stations.push_back({"B" + std::to_string(station), {}});
    data.items.resize(itemCount);
    data.rows.reserve(std::size_t{runCount} * itemCount);
    for (std::uint32_t run = 0; run < runCount; ++run) {
        const std::uint32_t station = run % stations;
        data.visits.push_back({station, std::int64_t{3600} * run, "", "", false});
        const bool isDrifting = station + 1 == stations && run + lastRuns >= runCount;
        for (std::uint32_t item = 0; item < itemCount; ++item)
            data.rows.push_back(
                {run, item,
                 10 + 0.01 * item + 0.1 * station + deviation(numbers) + (isDrifting ? drift : 0)});
    }
    return data;
}

double ProcessorMilliseconds() {
    return 1e3 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

double MillisecondsOfTrend(const Bench::TrendData& data) {
    const double start = ProcessorMilliseconds();
    const Bench::Trend trend = Bench::TrendOf(data);
    const double end = ProcessorMilliseconds();
    if (trend.stations.front().station + 1 != data.stations.size() || !trend.stations.front().drift)
        throw std::runtime_error("the drifting station was not found");
    return end - start;
}

double MillisecondsOfSorting(const Bench::TrendData& data) {
    std::vector<double> powers;
    powers.reserve(data.rows.size());
    for (const Bench::TrendRow& row : data.rows)
        powers.push_back(row.power);
    const double start = ProcessorMilliseconds();
    std::sort(powers.begin(), powers.end());
    const double end = ProcessorMilliseconds();
    if (powers.front() > powers.back())
        throw std::runtime_error("the powers are not sorted");
    return end - start;
}

double Median(std::vector<double> values) {
    return Bench::MedianOf(values);
}

} // namespace

int main(int argc, char* argv[]) {
    const int rounds = argc > 1 ? std::stoi(argv[1]) : 9;
    for (const std::uint32_t stations : {4U, 12U}) {
        const Bench::TrendData data = DataOf(stations);
        std::vector<double> trends;
        std::vector<double> sorts;
        for (int round = 0; round < rounds; ++round) {
            trends.push_back(MillisecondsOfTrend(data));
            sorts.push_back(MillisecondsOfSorting(data));
        }
        std::printf(
            "| %-38s | %9.1f ms  | %6.2f x %-20s | <= 300  |\n",
            ("trend of 1,000,000 powers, " + std::to_string(stations) + " stations").c_str(),
            Median(trends), Median(trends) / Median(sorts), "sorting them");
    }
    return 0;
}
