#include "Tools/SarvexTool/Bench/Output/Problems.h"

#include "Tools/SarvexTool/Bench/Output/ShownText.h"

namespace Bench {

namespace {

constexpr const char* bold = "\x1B[1m";
constexpr const char* boldRed = "\x1B[1;31m";
constexpr const char* boldMagenta = "\x1B[1;35m";
constexpr const char* plain = "\x1B[0m";

std::string PlaceOf(const std::string& file, const Problem& problem) {
    std::string place = MakeHarmless(file);
    if (problem.line != 0)
        place += ":" + std::to_string(problem.line) + ":" + std::to_string(problem.column);
    return place + ":";
}

} // namespace

void PrintProblems(const Console& console, const std::string& file,
                   std::span<const Problem> problems) {
    const auto inColour = [&console](const char* colour, const std::string& text) {
        return console.hasColours ? colour + text + plain : text;
    };
    for (const Problem& problem : problems) {
        const bool isError = problem.severity == Severity::Error;
        console.stream << inColour(bold, PlaceOf(file, problem)) << " "
                       << inColour(isError ? boldRed : boldMagenta, isError ? "error:" : "warning:")
                       << " " << MakeHarmless(problem.text) << "\n";
    }
}

} // namespace Bench
