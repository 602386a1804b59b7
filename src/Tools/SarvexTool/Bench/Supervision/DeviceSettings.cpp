#include "Tools/SarvexTool/Bench/Supervision/DeviceSettings.h"

#include <algorithm>

namespace Bench {

namespace {

bool AreSameLetters(char left, char right) {
    const auto lower = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    };
    return lower(left) == lower(right);
}

/// Whether two options are the same in any case.
bool AreSame(const std::string& left, const std::string& right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), AreSameLetters);
}

} // namespace

OwnSettings SettingsIn(const std::vector<std::string>& arguments) {
    OwnSettings settings;
    for (std::size_t place = 0; place + 1 < arguments.size(); ++place) {
        for (std::size_t index = 0; index < SettingCount; ++index) {
            if (AreSame(arguments[place], PowerTest::columnCommands.at(index).option))
                settings.at(index) = arguments[place + 1];
        }
    }
    return settings;
}

bool IsStart(const std::vector<std::string>& arguments) {
    return std::any_of(arguments.begin(), arguments.end(), [](const std::string& argument) {
        return AreSame(argument, "-wifi-start");
    });
}

void DeviceSettings::Accept(const OwnSettings& settings) {
    for (std::size_t index = 0; index < SettingCount; ++index) {
        if (settings.at(index))
            m_accepted.at(index) = settings.at(index);
    }
}

std::vector<std::string> DeviceSettings::Command() const {
    std::vector<std::string> arguments;
    for (std::size_t index = 0; index < SettingCount; ++index) {
        if (!m_accepted.at(index))
            continue;
        arguments.emplace_back(PowerTest::columnCommands.at(index).option);
        arguments.push_back(*m_accepted.at(index));
    }
    return arguments;
}

} // namespace Bench
