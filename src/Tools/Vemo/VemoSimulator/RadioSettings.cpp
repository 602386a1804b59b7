#include "Tools/Vemo/VemoSimulator/RadioSettings.h"

#include "Tools/Vemo/VemoSimulator/Rates.h"
#include "Tools/Vemo/VemoSimulator/Text.h"

#include <vector>

namespace VemoSimulator {

namespace {

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

} // namespace VemoSimulator
