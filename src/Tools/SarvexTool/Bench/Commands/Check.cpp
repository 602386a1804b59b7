#include "Tools/SarvexTool/Bench/Commands/Check.h"

#include "Tools/SarvexTool/Bench/Commands/FileArguments.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace Bench {

namespace {

struct CheckOptions {
    std::vector<std::string> files;
};

int CheckFile(const std::string& name, Surroundings& surroundings) {
    const std::string text = ReadInput(name, surroundings.in);
    if (!text.empty())
        return ExitCode::Fine;
    const std::vector<Problem> problems{{Severity::Error, 1, 0, "the file is empty"}};
    PrintProblems(surroundings.out, name, problems);
    return ExitCode::Found;
}

/// The same, so that a file that cannot be read does not keep others from being checked.
int TryFile(const std::string& name, Surroundings& surroundings) {
    try {
        return CheckFile(name, surroundings);
    } catch (const BadFile& bad) {
        PrintProblems(surroundings.err, bad.File(), bad.Problems());
        return ExitCode::Failed;
    }
}

int Check(const CheckOptions& options, Surroundings& surroundings) {
    RequireDistinctFiles(options.files, {});
    int exitCode = ExitCode::Fine;
    for (const std::string& name : options.files)
        exitCode = std::max(exitCode, TryFile(name, surroundings));
    return exitCode;
}

} // namespace

Command AddCheck(CLI::App& program) {
    CLI::App* const app = program.add_subcommand("check", "Tell all that is wrong with test files");
    const auto options = std::make_shared<CheckOptions>();
    app->add_option("FILE", options->files, "Test file, - for standard input")->required();
    return {app, [options](Surroundings& surroundings) { return Check(*options, surroundings); }};
}

} // namespace Bench
