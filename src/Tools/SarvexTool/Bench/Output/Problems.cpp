#include "Tools/SarvexTool/Bench/Output/Problems.h"

#include "Tools/SarvexTool/Bench/Core/Passwords.h"
#include "Tools/SarvexTool/Bench/Output/ShownText.h"

namespace Bench {

namespace {

constexpr const char* bold = "\x1B[1m";
constexpr const char* plain = "\x1B[0m";

std::string PlaceOf(const std::string& file, const Problem& problem) {
    std::string place = file.empty() ? "\"\"" : MakeHarmless(WithoutPasswords(file));
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

/// A text that is longer than a screen without its middle, which is a cell of the file.
std::string Shortened(std::string text) {
    constexpr std::size_t mostBytes = 1000;
    constexpr std::size_t firstBytes = 500;
    constexpr std::size_t lastBytes = 400;
    if (text.size() <= mostBytes)
        return text;
    const auto isWithin = [&text](std::size_t place) {
        // A byte that continues a character of UTF-8.
        return (static_cast<unsigned char>(text[place]) & 0xC0U) == 0x80U;
    };
    std::size_t first = firstBytes;
    std::size_t last = text.size() - lastBytes;
    while (isWithin(first))
        --first;
    while (isWithin(last))
        ++last;
    return text.replace(first, last - first, " [" + std::to_string(last - first) + " bytes] ");
}

void PrintLine(const Console& console, const std::string& file, const Label& label,
               const Problem& problem) {
    const auto inColour = [&console](const char* colour, const std::string& text) {
        return console.hasColours ? colour + text + plain : text;
    };
    console.stream << inColour(bold, PlaceOf(file, problem)) << " "
                   << inColour(label.colour, label.text) << " "
                   << Shortened(MakeHarmless(problem.text)) << "\n";
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
