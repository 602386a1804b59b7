#pragma once

#include "Tools/SarvexTool/Bench/Core/Settings.h"

#include <string>
#include <vector>

namespace Bench {

/// The settings that a command of the user's own holds: the daemon's options for them, each with
/// the argument after it.
OwnSettings SettingsIn(const std::vector<std::string>& arguments);

/// Whether a command of the user's own starts a transmission. Options may be written in either
/// case.
bool IsStart(const std::vector<std::string>& arguments);

/// What the daemon keeps: the settings of all commands that it has accepted, a later one over an
/// earlier one.
class DeviceSettings {
public:
    void Accept(const OwnSettings& settings);

    /// The command that writes all of them, in the order in which the client sends settings; empty
    /// while nothing was accepted.
    std::vector<std::string> Command() const;

private:
    OwnSettings m_accepted;
};

} // namespace Bench
