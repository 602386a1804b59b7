#include "Tools/SarvexTool/Bench/Output/Problems.h"

#include "Tools/SarvexTool/Bench/Output/ShownText.h"

namespace Bench {

namespace {

constexpr const char* bold = "\x1B[1m";
constexpr const char* plain = "\x1B[0m";

std::string PlaceOf(const std::string& file, const Problem& problem) {
    std::string place = file.empty() ? "\"\"" : MakeHarmless(file);
    if (problem.line != 0)
        place += ":" + std::to_string(problem.line) + ":" + std::to_string(problem.column);
    return place + ":";
}

/// What a line begins with after its place.
struct Label {
    const char* text;
    const char* colour;
};

constexpr Label errorLabel{"error:", "\x1B[1;31m"};
constexpr Label warningLabel{"warning:", "\x1B[1;35m"};
constexpr Label correctedLabel{"corrected:", "\x1B[1;32m"};

void PrintLine(const Console& console, const std::string& file, const Label& label,
               const Problem& problem) {
    const auto inColour = [&console](const char* colour, const std::string& text) {
        return console.hasColours ? colour + text + plain : text;
    };
    console.stream << inColour(bold, PlaceOf(file, problem)) << " "
                   << inColour(label.colour, label.text) << " " << MakeHarmless(problem.text)
                   << "\n";
}

} // namespace

void PrintProblems(const Console& console, const std::string& file,
                   std::span<const Problem> problems) {
    for (const Problem& problem : problems)
        PrintLine(console, file, problem.severity == Severity::Error ? errorLabel : warningLabel,
                  problem);
}

void PrintCorrections(const Console& console, const std::string& file,
                      std::span<const Problem> corrections) {
    for (const Problem& correction : corrections)
        PrintLine(console, file, correctedLabel, correction);
}

} // namespace Bench
