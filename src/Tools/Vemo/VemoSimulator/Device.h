#pragma once

#include "Tools/Vemo/VemoSimulator/PowerModel.h"
#include "Tools/Vemo/VemoSimulator/RadioSettings.h"

#include <string>
#include <vector>

namespace VemoSimulator {

/// What the device says to a command. Lines have no line end.
struct Reply {
    std::vector<std::string> information;
    std::vector<std::string> errors;
    /// The text of the return-code line.
    std::string returnCode = "0";
    /// Whether the command ends the program.
    bool endsProgram = false;
};

/// What a device is from its making.
struct DeviceIdentity {
    /// Decimal digits.
    std::string macType = "5";
    /// Two characters.
    std::string countryCode = "US";
};

/// The device under test: keeps its settings from one command to the next.
class Device {
public:
    Device(const DeviceIdentity& identity, const PowerModel& powerModel);

    /// Carries the words of one command out, from left to right. With the first error the command
    /// ends, and the device stays as it was before the command.
    Reply Execute(const std::vector<std::string>& words);

private:
    struct State {
        RadioSettings settings;
        bool isCalibrated = false;
        bool isRunning = false;
    };

    DeviceIdentity m_identity;
    PowerModel m_powerModel;
    State m_state;

    friend class CommandRun;
};

/// The return codes of a command that fails.
inline constexpr int UnknownOptionCode = 1;
inline constexpr int BadValueCode = 2;
inline constexpr int MissingValueCode = 3;
inline constexpr int ConflictCode = 4;

/// The line of an answer from a device that transmits without calibration.
inline constexpr const char* UncalibratedLine = "The transmitter is uncalibrated.";

/// The beginning of a line with the target power of a chain, and the part that names the chain.
inline constexpr const char* TargetPowerLabel = "Target Power: ";
std::string ChainLabel(char chain);

/// Every option that the device knows, with the name of its value if it has one.
std::vector<std::string> DescribeDeviceOptions();

} // namespace VemoSimulator
