#include "Tools/Vemo/VemoSimulator/Options.h"

#include "Tools/Vemo/VemoSimulator/Text.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <stdexcept>

namespace VemoSimulator {

namespace {

constexpr std::uint64_t highestNumber = ~std::uint64_t{0};
constexpr std::uint32_t highestPort = 65535;
constexpr std::uint32_t longestLatency = 86'400'000;
constexpr std::uint32_t loudestNoise = 10'000;
constexpr std::uint32_t largestOffset = 10'000;

/// Option texts that become something else than text or number.
struct RawOptions {
    std::string recordingFile;
    std::uint32_t latency = 0;
    std::vector<std::string> faults;
};

std::string CheckMacType(const std::string& text) {
    constexpr std::size_t longest = 10;
    const bool isNumber = text.size() <= longest && !text.empty() &&
                          text.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? "" : "a MAC type has one to ten digits";
}

std::string CheckCountryCode(const std::string& text) {
    const bool isCode =
        text.size() == 2 && std::ranges::all_of(text, [](char character) {
            return (character >= 'A' && character <= 'Z') || (character >= '0' && character <= '9');
        });
    return isCode ? "" : "a country code has two capital letters or digits";
}

/// Takes decimal numbers up to a limit. CLI11 itself would read one that begins with a zero as
/// octal.
CLI::Validator UpTo(std::uint64_t highest) {
    const auto normalize = [highest](std::string& text) {
        const auto number = ParseDecimal(text);
        if (!number || *number > highest)
            return "not a number from 0 to " + std::to_string(highest);
        text = std::to_string(*number);
        return std::string();
    };
    return {normalize, ""};
}

void AddServerOptions(CLI::App& app, Options& options) {
    app.add_option("--port", options.port,
                   "Port to listen on; 0 takes a free one of four digits. Without this option the "
                   "port is read from Socket.cfg beside the program")
        ->type_name("N")
        ->transform(UpTo(highestPort));
    app.add_option("--address", options.address,
                   "Numeric address to listen on; other machines reach only one that is not a "
                   "loopback address")
        ->type_name("ADDRESS")
        ->capture_default_str();
    app.add_option("--body-limit", options.bodyLimit, "Longest request body that is read, in bytes")
        ->type_name("BYTES")
        ->transform(UpTo(highestNumber))
        ->capture_default_str();
    app.add_option("--request-log", options.requestLogFile,
                   "File that gets one line of JSON for each request; an old one is replaced")
        ->type_name("FILE");
}

void AddDeviceOptions(CLI::App& app, Simulator::Settings& settings) {
    app.add_option("--seed", settings.seed, "Chooses the noise of the target powers")
        ->type_name("N")
        ->transform(UpTo(highestNumber))
        ->capture_default_str();
    app.add_option("--noise", settings.noise,
                   "Largest noise of a target power, in hundredths of a dB; 0 for none")
        ->type_name("N")
        ->transform(UpTo(loudestNoise))
        ->capture_default_str();
    app.add_option("--offset", settings.offset,
                   "Hundredths of a dB that each target power is higher by, as on a bench that has "
                   "drifted")
        ->type_name("N")
        ->transform(UpTo(largestOffset))
        ->capture_default_str();
    app.add_option("--mac-type", settings.identity.macType, "MAC type that the device tells")
        ->type_name("N")
        ->check(CheckMacType)
        ->capture_default_str();
    app.add_option("--mcc", settings.identity.countryCode, "Country code that the device tells")
        ->type_name("XX")
        ->check(CheckCountryCode)
        ->capture_default_str();
}

void AddReplayOption(CLI::App& app, RawOptions& raw) {
    app.add_option("--replay", raw.recordingFile,
                   "Answers as the daemon did whose exchanges a run has kept in this file, "
                   "exchanges.jsonl; there is no simulated device then")
        ->type_name("FILE");
}

void AddBehaviourOptions(CLI::App& app, RawOptions& raw) {
    app.add_option("--latency", raw.latency, "Milliseconds before each answer to a command")
        ->type_name("MS")
        ->transform(UpTo(longestLatency))
        ->capture_default_str();
    app.add_option("--fault", raw.faults,
                   "Makes answers faulty; may be given several times. WHICH is the number of a "
                   "command (from 1), text=TEXT for commands that hold TEXT, or * for all")
        ->type_name("WHICH:FAULT")
        ->allow_extra_args(false);
}

/// Refuses what would have no effect on recorded answers.
void CheckReplay(const CLI::App& app, const std::vector<FaultRule>& faults) {
    for (const std::string name : {"--seed", "--noise", "--offset", "--mac-type", "--mcc"}) {
        if (app.count(name) > 0)
            throw std::invalid_argument(name + " describes the simulated device; with --replay "
                                               "there is none");
    }
    for (const FaultRule& rule : faults) {
        AnswerPlan plan;
        rule.ApplyTo(plan);
        if (ChangesText(plan))
            throw std::invalid_argument("the fault " + rule.Text() +
                                        " changes the text of an answer; with --replay answers "
                                        "are as they were recorded");
    }
}

/// Takes what CLI11 read over into the options.
void Finish(const CLI::App& app, Options& options, const RawOptions& raw) {
    options.simulator.latency = std::chrono::milliseconds(raw.latency);
    for (const std::string& rule : raw.faults)
        options.simulator.faults.emplace_back(rule);
    if (app.count("--replay") == 0)
        return;
    CheckReplay(app, options.simulator.faults);
    options.simulator.pRecording = ReadRecording(raw.recordingFile);
}

EarlyEnd Complain(const std::string& problem, const std::string& name) {
    constexpr int badCommandLine = 2;
    return {"", "vemo: " + problem + "\nRun " + name + " --help for the options.\n",
            badCommandLine};
}

/// What is to be typed to call the program.
std::string NameToCall(const std::string& calledAs) {
    const std::string name = calledAs.substr(calledAs.find_last_of("/\\") + 1);
    return name.ends_with("-vemo") ? name : "vemo";
}

} // namespace

std::variant<Options, EarlyEnd> ParseOptions(const std::vector<std::string>& arguments,
                                             const std::string& calledAs) {
    const std::string name = NameToCall(calledAs);
    Options options;
    RawOptions raw;
    CLI::App app("Replaces the daemon where there is no device: takes commands over HTTP and "
                 "answers as a simulated device would.",
                 name);
    app.set_help_flag("--help", "Print this text and end");
    app.set_version_flag("--version", "vemo " VEMO_VERSION, "Print the version and end");
    AddServerOptions(app, options);
    AddDeviceOptions(app, options.simulator);
    AddReplayOption(app, raw);
    AddBehaviourOptions(app, raw);
    const std::string footer = "Faults:\n" + DescribeFaults();
    // It gets a line end of its own.
    app.footer(footer.substr(0, footer.size() - 1));
    try {
        if (arguments == std::vector<std::string>{"/?"}) // As Windows asks for help.
            throw CLI::CallForHelp();
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        Finish(app, options, raw);
        return options;
    } catch (const CLI::CallForHelp&) {
        return EarlyEnd{app.help(), "", 0};
    } catch (const CLI::CallForVersion&) {
        return EarlyEnd{app.version() + "\n", "", 0};
    } catch (const std::exception& error) {
        return Complain(error.what(), name);
    }
}

} // namespace VemoSimulator
