#pragma once

#include "Tools/Vemo/VemoSimulator/Simulator.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace VemoSimulator {

/// What the command line asks for.
struct Options {
    /// Nothing when the port comes from Socket.cfg, 0 for any free four-digit port.
    std::optional<std::uint16_t> port;
    std::string address = "127.0.0.1";
    std::uint64_t bodyLimit = 268'435'456;
    /// Empty for none.
    std::string requestLogFile;
    Simulator::Settings simulator;
};

/// The command line asked for a text, or was wrong: the program says so and ends.
struct EarlyEnd {
    std::string output;
    std::string error;
    int exitCode = 0;
};

/// arguments are those after the program's name; calledAs is that name, perhaps with its folder.
/// Texts that show how to call the program have it when it ends in vemo, as that of a link may.
/// Reads the recording and the files that fault rules name.
std::variant<Options, EarlyEnd> ParseOptions(const std::vector<std::string>& arguments,
                                             const std::string& calledAs = "vemo");

} // namespace VemoSimulator
