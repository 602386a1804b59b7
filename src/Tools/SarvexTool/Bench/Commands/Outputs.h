#pragma once

#include "Tools/SarvexTool/Bench/Commands/Command.h"

#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace Bench {

/// An output that the user may have asked for.
struct Output {
    /// Nothing when it is not asked for.
    std::optional<std::string> name;
    std::function<void(std::ostream&)> write;
};

/// The names of those that are asked for.
std::vector<std::string> NamesOf(const std::vector<Output>& outputs);

/// Throws WrongUsage when a standard stream is named twice, or an output is one of the inputs or
/// another output, by whatever name. To be called before anything is written.
void RequireDistinctFiles(const std::vector<std::string>& inputs,
                          const std::vector<std::string>& outputs);

/// Writes those that are asked for. None takes its file's place before all could be written.
void WriteOutputs(const std::vector<Output>& outputs, Surroundings& surroundings);

/// Where the text for people goes: to standard output, but to standard error when an output has
/// that for itself.
const Console& ConsoleBeside(const std::vector<Output>& outputs, const Surroundings& surroundings);

} // namespace Bench
