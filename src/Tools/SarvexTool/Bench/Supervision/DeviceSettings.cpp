#include "Tools/SarvexTool/Bench/Supervision/DeviceSettings.h"

#include <algorithm>
#include <string_view>

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

std::vector<std::string> AsSent(std::vector<std::string> arguments) {
    constexpr std::string_view whiteSpace = " \t\n\v\f\r";
    if (!arguments.empty() && !arguments.back().empty() &&
        whiteSpace.find(arguments.back().back()) != std::string_view::npos)
        arguments.back().pop_back();
    return arguments;
}

bool MayStart(const std::vector<std::string>& arguments) {
    constexpr std::string_view start = "-wifi-start";
    return std::any_of(arguments.begin(), arguments.end(), [&](const std::string& argument) {
        return argument.starts_with('{') || argument.find("$(") != std::string::npos ||
               std::search(argument.begin(), argument.end(), start.begin(), start.end(),
                           AreSameLetters) != argument.end();
    });
}

void DeviceSettings::Accept(const OwnSettings& settings) {
    m_accepted = With(settings);
}

OwnSettings DeviceSettings::With(const OwnSettings& settings) const {
    OwnSettings all = m_accepted;
    for (std::size_t index = 0; index < SettingCount; ++index) {
        if (settings.at(index))
            all.at(index) = settings.at(index);
    }
    return all;
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
