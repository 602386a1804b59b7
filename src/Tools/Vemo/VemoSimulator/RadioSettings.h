#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace VemoSimulator {

/// What a command can set on the device, each by an option with one value.
enum class Setting : std::size_t {
    Band,
    Chains,
    Bandwidth,
    Channel,
    BandwidthMode,
    Rate,
    TransmissionMode,
    ResourceUnit,
    SpecificResourceUnit,
    LargeResourceUnit,
    Mode
};

inline constexpr std::size_t SettingCount = 11;

struct SettingRow {
    Setting setting;
    /// The option as it is written in a command.
    std::string_view option;
    /// What the answer calls the setting.
    std::string_view title;
    std::string_view initialValue;
    /// Whether a change makes an earlier calibration void.
    bool needsCalibration;
};

/// All settings, in the order of the enumeration.
std::span<const SettingRow> SettingTable();

/// The value as the device keeps it (the letters' case as documented) when the setting accepts it.
std::optional<std::string> AcceptedValue(Setting setting, std::string_view text);

/// The accepted values in one line, for messages: "A, B, AB", "1 to 233".
std::string DescribeValues(Setting setting);

/// The device's settings; each holds an accepted value at any time.
class RadioSettings {
public:
    /// A device as it is after power-on.
    RadioSettings();

    const std::string& Get(Setting setting) const { return m_values[Index(setting)]; }

    /// The value must be accepted.
    void Set(Setting setting, const std::string& value) { m_values[Index(setting)] = value; }

private:
    static std::size_t Index(Setting setting) { return static_cast<std::size_t>(setting); }

    std::array<std::string, SettingCount> m_values;
};

/// The names of all rates that the device knows; they live as long as the program.
std::vector<std::string_view> RateNames();

/// How much less power a rate gets than the slowest one, in hundredths of a dB. The name is one of
/// RateNames.
int RateBackOff(std::string_view name);

/// The rates in one line, for messages.
std::string DescribeRates();

} // namespace VemoSimulator
