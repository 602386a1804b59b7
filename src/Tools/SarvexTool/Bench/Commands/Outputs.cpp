#include "Tools/SarvexTool/Bench/Commands/Outputs.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/OutputFile.h"

#include <algorithm>
#include <deque>

namespace Bench {

std::vector<std::string> NamesOf(const std::vector<Output>& outputs) {
    std::vector<std::string> names;
    for (const Output& output : outputs) {
        if (output.name)
            names.push_back(*output.name);
    }
    return names;
}

void RequireDistinctFiles(const std::vector<std::string>& inputs,
                          const std::vector<std::string>& outputs) {
    if (const auto problem = ProblemOfNames(inputs, outputs))
        throw WrongUsage(*problem);
}

void WriteOutputs(const std::vector<Output>& outputs, Surroundings& surroundings) {
    std::deque<OutputFile> files;
    for (const Output& output : outputs) {
        if (output.name)
            output.write(files.emplace_back(*output.name, surroundings.out.stream).Stream());
    }
    for (OutputFile& file : files)
        file.Finish();
    for (OutputFile& file : files)
        file.Commit();
}

const Console& ConsoleBeside(const std::vector<Output>& outputs, const Surroundings& surroundings) {
    const bool isTaken = std::any_of(outputs.begin(), outputs.end(), [](const Output& output) {
        return output.name == StandardStreamName;
    });
    return isTaken ? surroundings.err : surroundings.out;
}

} // namespace Bench
