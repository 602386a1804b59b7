#include "benchmarks/Bench/BenchInputs.h"

#include "Tools/Vemo/VemoClient/DynamicTest/Columns.h"

#include <array>
#include <fstream>
#include <string>

namespace Bench {

namespace {

constexpr const char* header = "Channel,Rate,Bandwidth,Band,Mode,Chains,Resource Unit";

/// The cells of a line, which count as the digits of its number do.
std::string CellsOf(int number) {
    constexpr std::array<const char*, 4> bandwidths{"20", "40", "80", "160"};
    constexpr std::array<const char*, 3> bands{"2.4", "5", "6"};
    constexpr std::array<const char*, 2> modes{"SISO", "MIMO"};
    constexpr std::array<const char*, 3> chains{"A", "B", "AB"};
    constexpr int channelCount = 200;
    constexpr int rateCount = 14;
    const auto take = [&number](int count) {
        const int digit = number % count;
        number /= count;
        return static_cast<std::size_t>(digit);
    };
    std::string cells = std::to_string(take(channelCount) + 1);
    cells += ",MCS" + std::to_string(take(rateCount));
    cells.append(",").append(bandwidths[take(bandwidths.size())]);
    cells.append(",").append(bands[take(bands.size())]);
    cells.append(",").append(modes[take(modes.size())]);
    cells.append(",").append(chains[take(chains.size())]);
    return cells + "," + std::to_string(number);
}

std::string PowerOf(int number, int shift) {
    const bool isShifted = number % 10 == 0;
    return std::to_string(10 + number % 7 + (isShifted ? shift : 0)) + "." +
           std::to_string(number % 100);
}

} // namespace

void WriteTestFile(const std::filesystem::path& file, int lines) {
    std::ofstream stream(file);
    stream << header << "\n";
    for (int line = 0; line < lines; ++line)
        stream << CellsOf(line) << "\n";
}

void WriteResult(const std::filesystem::path& folder, int lines, int shift) {
    std::ofstream table(folder / "result.csv");
    std::ofstream tree(folder / "result.xml");
    table << header << PowerTest::powerTitles << "\n";
    tree << "<?xml version=\"1.0\" ?>\n<PowerTable MCC=\"US\">\n";
    for (int line = 0; line < lines; ++line) {
        const std::string power = PowerOf(line, shift);
        table << CellsOf(line) << "," << power << "," << power << "\n";
        tree << "\t\t\t\t\t<chainA power=\"" << power << "dBm\" BandwidthMode=\"-\" ResourceUnit=\""
             << line % 5 << "\" SpecificResourceUnit=\"-\" LargeRUSize=\"-\" />\n";
    }
    tree << "</PowerTable>\n";
}

void WriteLimits(const std::filesystem::path& file, int lines) {
    std::ofstream stream(file);
    stream << header << ",Chain,Min,Max\n";
    for (int line = 0; line < lines; ++line)
        stream << CellsOf(line) << ",*,11,15.5\n";
    stream << "*,*,*,*,*,*,*,A|B,10,*\n";
}

} // namespace Bench
