#pragma once

#include <string>
#include <vector>

namespace VemoSimulator {

/// What the device says to a command. Lines bear no line end.
struct Reply {
    std::vector<std::string> information;
    std::vector<std::string> errors;
    /// The text of the return-code line.
    std::string returnCode = "0";
    /// Whether the command ends the program.
    bool endsProgram = false;
};

} // namespace VemoSimulator
