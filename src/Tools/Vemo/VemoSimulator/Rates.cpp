#include "Tools/Vemo/VemoSimulator/Rates.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace VemoSimulator {

namespace {

struct Rate {
    std::string name;
    int backOff;
};

/// Rates with a number in Mbit/s.
struct LegacyRate {
    std::string_view name;
    int backOff;
};

constexpr std::array<LegacyRate, 12> legacyRates{{{"1", 0},
                                                  {"2", 0},
                                                  {"5.5", 0},
                                                  {"11", 0},
                                                  {"6", 0},
                                                  {"9", 0},
                                                  {"12", 50},
                                                  {"18", 50},
                                                  {"24", 100},
                                                  {"36", 100},
                                                  {"48", 200},
                                                  {"54", 250}}};

/// Rates with an index from 0.
struct RateFamily {
    std::string_view prefix;
    std::size_t highestIndex;
};

constexpr std::array<RateFamily, 6> rateFamilies{
    {{"MCS", 13}, {"R", 13}, {"HT-MCS", 7}, {"VHT-MCS", 9}, {"HE-MCS", 11}, {"EHT-MCS", 13}}};

/// By index, the same in each family.
constexpr std::array<int, 14> indexBackOffs{0,   0,   50,  100, 150, 200, 250,
                                            300, 350, 400, 450, 500, 600, 700};

std::vector<Rate> MakeRates() {
    std::vector<Rate> rates;
    for (const LegacyRate& rate : legacyRates)
        rates.push_back({std::string(rate.name), rate.backOff});
    for (const RateFamily& family : rateFamilies) {
        for (std::size_t index = 0; index <= family.highestIndex; ++index)
            rates.push_back(
                {std::string(family.prefix) + std::to_string(index), indexBackOffs[index]});
    }
    return rates;
}

const std::vector<Rate>& Rates() {
    static const std::vector<Rate> rates = MakeRates();
    return rates;
}

} // namespace

std::vector<std::string_view> RateNames() {
    std::vector<std::string_view> names;
    for (const Rate& rate : Rates())
        names.push_back(rate.name);
    return names;
}

int RateBackOff(std::string_view name) {
    return std::ranges::find(Rates(), name, &Rate::name)->backOff;
}

std::string DescribeRates() {
    std::string description;
    for (const LegacyRate& rate : legacyRates)
        description.append(rate.name).append(", ");
    for (const RateFamily& family : rateFamilies) {
        description.append(family.prefix).append("0 to ").append(family.prefix);
        description.append(std::to_string(family.highestIndex)).append(", ");
    }
    description.resize(description.size() - 2);
    return description;
}

} // namespace VemoSimulator
