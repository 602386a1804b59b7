#pragma once

#include "Tools/SarvexTool/Bench/Core/Settings.h"

#include <string>
#include <vector>

namespace Bench {

/// The settings that a command of the user's own holds: the daemon's options for them, each with
/// the argument after it.
OwnSettings SettingsIn(const std::vector<std::string>& arguments);

/// The arguments as the client sends them: of the last one a white-space character at its end is
/// dropped.
std::vector<std::string> AsSent(std::vector<std::string> arguments);

/// Whether a command of the user's own may start a transmission: where one of its arguments holds
/// the option, in either case, or is a variable or a typed literal, which may stand for anything.
bool MayStart(const std::vector<std::string>& arguments);

/// What the daemon keeps: the settings of all commands that it has accepted, a later one over an
/// earlier one.
class DeviceSettings {
public:
    void Accept(const OwnSettings& settings);

    /// What the device is set to when it takes these too.
    OwnSettings With(const OwnSettings& settings) const;

    /// The command that writes all of them, in the order in which the client sends settings; empty
    /// while nothing was accepted.
    std::vector<std::string> Command() const;

private:
    OwnSettings m_accepted;
};

} // namespace Bench
