#include "Tools/Vemo/VemoSimulator/Device.h"

#include "Tools/Vemo/VemoSimulator/Text.h"

#include <array>
#include <span>

namespace VemoSimulator {

/// One command on its way through the device: works on a copy of the state, which the device takes
/// over when the command has gone well.
class CommandRun {
public:
    explicit CommandRun(const Device& device) : m_device(device), m_state(device.m_state) {}

    void Execute(std::span<const std::string> words);

    const Device::State& State() const { return m_state; }
    const Reply& Result() const { return m_reply; }
    bool HasFailed() const { return !m_reply.errors.empty(); }

    void Say(const std::string& line) { m_reply.information.push_back(line); }
    void Fail(int code, const std::string& line);

    void CalibrateTransmitter();
    void Start();
    void Stop();
    void TellMacType() { Say("Mac Type: " + m_device.m_identity.macType); }
    void TellCountryCode() { Say("Current MCC: " + m_device.m_identity.countryCode); }
    void TellOptions();
    void EndProgram();

private:
    std::size_t ExecuteFirst(std::span<const std::string> words);
    void Set(const SettingRow& row, const std::string& text);
    bool RefusesSettings();
    void TellTargetPower(char chain);

    const Device& m_device;
    Device::State m_state;
    Reply m_reply;
};

namespace {

/// An option that is no setting. What is said and nothing else happens where there is no action.
struct ActionRow {
    std::string_view option;
    /// How the option's value is called; empty when it takes none.
    std::string_view value;
    void (CommandRun::*action)();
    const char* line;
};

constexpr std::array<ActionRow, 18> actionTable{{
    {"-wifi-calibrate-tx", "", &CommandRun::CalibrateTransmitter, nullptr},
    {"-wifi-start", "", &CommandRun::Start, nullptr},
    {"-wifi-stop", "", &CommandRun::Stop, nullptr},
    {"-wifi-get-mac-type", "", &CommandRun::TellMacType, nullptr},
    {"-wifi-get-mcc", "", &CommandRun::TellCountryCode, nullptr},
    {"-exit", "", &CommandRun::EndProgram, nullptr},
    {"-connect", "", nullptr, "Connected to the device."},
    {"-connectbin", "", nullptr, "Connected to the device with Bin Commands."},
    {"-disconnect", "", nullptr, "Disconnected from the device."},
    {"-disconnectbin", "", nullptr, "Disconnected from the device with Bin Commands."},
    {"-disconnectxvt", "", nullptr, "Disconnected from the device."},
    {"-remote", "address", nullptr, "The remote address is noted."},
    {"-remotedaemon", "address", nullptr, "The remote address is noted."},
    {"-set_init_retries", "count", nullptr, "The number of retries is noted."},
    {"-open_local_daemon", "", nullptr, "The daemon is running."},
    {"-no_automation", "", nullptr, "The answer comes all the same."},
    {"-?", "", &CommandRun::TellOptions, nullptr},
    {"-help", "", &CommandRun::TellOptions, nullptr},
}};

/// A word of the command as messages repeat it: a word can be long and hold any byte, and must not
/// break the answer's lines.
std::string Quote(const std::string& word) {
    constexpr std::size_t longest = 100;
    constexpr unsigned char firstPrintable = 0x20;
    std::string text = word.substr(0, longest);
    for (char& character : text) {
        if (static_cast<unsigned char>(character) < firstPrintable)
            character = '?';
    }
    return "'" + text + (word.size() > longest ? "...'" : "'");
}

template <typename Table>
auto FindOption(const Table& table, const std::string& option) {
    return std::ranges::find_if(
        table, [&](const auto& row) { return EqualsIgnoringCase(row.option, option); });
}

} // namespace

void CommandRun::Execute(std::span<const std::string> words) {
    while (!words.empty() && !HasFailed())
        words = words.subspan(ExecuteFirst(words));
}

/// Carries the first option out; returns how many words belong to it.
std::size_t CommandRun::ExecuteFirst(std::span<const std::string> words) {
    const std::string& option = words.front();
    const auto action = FindOption(actionTable, option);
    const auto setting = FindOption(SettingTable(), option);
    const bool isAction = action != actionTable.end();
    const bool isSetting = setting != SettingTable().end();
    const bool takesValue = isSetting || (isAction && !action->value.empty());
    if (!isAction && !isSetting)
        Fail(UnknownOptionCode, "Unknown option " + Quote(option) + ".");
    else if (takesValue && words.size() < 2)
        Fail(MissingValueCode, "Option " + Quote(option) + " needs a value.");
    else if (isSetting)
        Set(*setting, words[1]);
    else if (action->action != nullptr)
        (this->*action->action)();
    else
        Say(action->line);
    return takesValue && words.size() > 1 ? 2 : 1;
}

void CommandRun::Fail(int code, const std::string& line) {
    m_reply.errors.push_back(line);
    m_reply.returnCode = std::to_string(code);
}

void CommandRun::Set(const SettingRow& row, const std::string& text) {
    const auto value = AcceptedValue(row.setting, text);
    const std::string title(row.title);
    if (!value) {
        Fail(BadValueCode, title + " cannot be " + Quote(text) +
                               ". Accepted: " + DescribeValues(row.setting) + ".");
        return;
    }
    m_state.isCalibrated = m_state.isCalibrated && !row.needsCalibration;
    m_state.settings.Set(row.setting, *value);
    Say(title + ": " + *value);
}

bool CommandRun::RefusesSettings() {
    const std::string conflict = FindConflict(m_state.settings);
    if (!conflict.empty())
        Fail(ConflictCode, conflict);
    return HasFailed();
}

void CommandRun::CalibrateTransmitter() {
    if (RefusesSettings())
        return;
    m_state.isCalibrated = true;
    Say("The transmitter is calibrated.");
}

void CommandRun::Start() {
    if (RefusesSettings())
        return;
    const std::string& mode = m_state.settings.Get(Setting::Mode);
    m_state.isRunning = true;
    Say("Started in mode " + mode + ".");
    if (mode != "tx_modulated")
        return;
    if (!m_state.isCalibrated) {
        Say(UncalibratedLine);
        return;
    }
    for (const char chain : m_state.settings.Get(Setting::Chains))
        TellTargetPower(chain);
}

void CommandRun::TellTargetPower(char chain) {
    const RadioSettings& settings = m_state.settings;
    const int power = m_device.m_powerModel.TargetPower(settings, chain);
    Say(TargetPowerLabel + ("Band " + settings.Get(Setting::Band)) + " Channel " +
        settings.Get(Setting::Channel) + " Bandwidth " + settings.Get(Setting::Bandwidth) +
        " MHz Rate " + settings.Get(Setting::Rate) + " " + ChainLabel(chain) + " " +
        FormatHundredths(power) + " dBm");
}

void CommandRun::Stop() {
    Say(m_state.isRunning ? "Stopped." : "Nothing was running.");
    m_state.isRunning = false;
}

void CommandRun::TellOptions() {
    for (const std::string& line : DescribeDeviceOptions())
        Say(line);
}

void CommandRun::EndProgram() {
    m_reply.endsProgram = true;
    Say("The simulated daemon ends.");
}

Device::Device(const DeviceIdentity& identity, const PowerModel& powerModel)
    : m_identity(identity), m_powerModel(powerModel) {}

Reply Device::Execute(const std::vector<std::string>& words) {
    CommandRun run(*this);
    run.Execute(words);
    if (run.HasFailed())
        return {{}, run.Result().errors, run.Result().returnCode};
    m_state = run.State();
    return run.Result();
}

std::string ChainLabel(char chain) {
    return std::string("Chain ") + chain + (chain == 'A' ? " (1)" : " (2)");
}

std::vector<std::string> DescribeDeviceOptions() {
    std::vector<std::string> lines;
    for (const SettingRow& row : SettingTable())
        lines.push_back(std::string(row.option) + " <" + std::string(row.title) + ">");
    for (const ActionRow& row : actionTable)
        lines.push_back(std::string(row.option) +
                        (row.value.empty() ? "" : " <" + std::string(row.value) + ">"));
    return lines;
}

} // namespace VemoSimulator
