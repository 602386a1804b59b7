#include "Tools/Vemo/VemoSimulator/RadioSettings.h"

#include "Tools/Vemo/VemoSimulator/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

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

constexpr std::array<SettingRow, SettingCount> settingTable{{
    {Setting::Band, "-wifi-band", "Band", "5", true},
    {Setting::Chains, "-wifi-tx-chains-from-file", "Chains", "AB", true},
    {Setting::Bandwidth, "-wifi-bandwidth", "Bandwidth", "20", true},
    {Setting::Channel, "-wifi-channel", "Channel", "36", true},
    {Setting::BandwidthMode, "-wifi-bw-mode", "Bandwidth Mode", "HE", true},
    {Setting::Rate, "-wifi-rate", "Rate", "MCS0", true},
    {Setting::TransmissionMode, "-wifi-tx-transm-mode", "Transmission Mode", "SISO", true},
    {Setting::ResourceUnit, "-wifi-resource-unit", "Resource Unit", "242", true},
    {Setting::SpecificResourceUnit, "-wifi-specific-resource-unit", "Specific Resource Unit", "0",
     true},
    {Setting::LargeResourceUnit, "-wifi-large-ru", "Large RU Size", "none", true},
    {Setting::Mode, "-wifi-mode", "Mode", "tx_modulated", false},
}};

/// A number of a range when highest is not 0, otherwise one of the texts.
struct ValueSet {
    std::vector<std::string_view> texts;
    std::uint32_t lowest = 0;
    std::uint32_t highest = 0;
};

constexpr std::uint32_t highestChannel = 233;
constexpr std::uint32_t highestResourceUnitIndex = 147;

const ValueSet& ValuesOf(Setting setting) {
    static const std::array<ValueSet, SettingCount> sets{{
        {{"2.4", "5", "6"}},
        {{"A", "B", "AB"}},
        {{"20", "40", "80", "160", "320"}},
        {{}, 1, highestChannel},
        {{"legacy", "HT", "VHT", "HE", "EHT"}},
        {RateNames()},
        {{"SISO", "MIMO", "CDD", "STBC", "BF"}},
        {{"26", "52", "106", "242", "484", "996", "2x996", "4x996"}},
        {{}, 0, highestResourceUnitIndex},
        {{"none", "52+26", "106+26", "484+242", "996+484", "996+484+242", "2x996+484", "3x996",
          "3x996+484"}},
        {{"tx_modulated", "tx_unmodulated", "rx"}},
    }};
    return sets[static_cast<std::size_t>(setting)];
}

std::optional<std::string> AcceptedNumber(const ValueSet& values, std::string_view text) {
    const auto number = ParseDecimal(text);
    if (!number || *number < values.lowest || *number > values.highest)
        return std::nullopt;
    return std::to_string(*number);
}

} // namespace

std::span<const SettingRow> SettingTable() {
    return settingTable;
}

std::optional<std::string> AcceptedValue(Setting setting, std::string_view text) {
    const ValueSet& values = ValuesOf(setting);
    if (values.highest != 0)
        return AcceptedNumber(values, text);
    for (const std::string_view accepted : values.texts) {
        if (EqualsIgnoringCase(accepted, text))
            return std::string(accepted);
    }
    return std::nullopt;
}

std::string DescribeValues(Setting setting) {
    const ValueSet& values = ValuesOf(setting);
    if (setting == Setting::Rate)
        return DescribeRates();
    if (values.highest != 0)
        return std::to_string(values.lowest) + " to " + std::to_string(values.highest);
    std::string description;
    for (const std::string_view text : values.texts)
        description.append(description.empty() ? "" : ", ").append(text);
    return description;
}

RadioSettings::RadioSettings() {
    for (const SettingRow& row : settingTable)
        Set(row.setting, std::string(row.initialValue));
}

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
