#include "tests/EndToEnd/BenchRun/OddTestFiles.h"
#include "tests/EndToEnd/BenchRun/PowerTests.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>
#include <sstream>
#include <utility>

// What the client sends for the lines of all chunks is what the lines of the plan come to, wherever
// the plan is cut.

namespace EndToEnd {
namespace {

std::map<std::string, std::string> Plans() {
    std::map<std::string, std::string> plans = OddTestFiles();
    plans.insert({
        {"DependentLines", DependentLines(40)},
        {"ColumnsInAnotherOrder", "Rate,Chains,Channel,Band\nMCS0,A,36,5\n-,B,-,-\nMCS1,-,40,-\n"
                                  "-,-,-,2.4\n"},
        {"SettingsThatComeLate", "Band,Chains,Mode\n-,A,-\n5,-,-\n-,B,SISO\n-,-,-\n"},
        {"BlanksInAValue", "Band, Chains ,Rate\n 5 ,A, MCS 0 a\n-,B,-\n-,AB,-\n"},
        {"LastColumnWithoutATitle", "Band,Chains,\n5,A,\n-,B,\n6,-,x\n-,-,-\n"},
    });
    return plans;
}

/// Those that can be split: the others have errors.
const std::set<std::string> soundPlans = {"Short",
                                          "Sweep",
                                          "CrLf",
                                          "LineEndsOfBothKinds",
                                          "NoLastLineEnd",
                                          "SurplusCells",
                                          "EmptyLines",
                                          "TextOfAnAnswer",
                                          "LongCell",
                                          "DependentLines",
                                          "ColumnsInAnotherOrder",
                                          "BlanksInAValue",
                                          "SettingsThatComeLate",
                                          "LastColumnWithoutATitle",
                                          "RefusedBeforeMeasured"};

std::string Trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \r");
    return first == std::string::npos
               ? ""
               : text.substr(first, text.find_last_not_of(" \r") + 1 - first);
}

std::vector<std::string> CellsOf(const std::string& line) {
    std::vector<std::string> cells;
    std::istringstream stream(line);
    for (std::string cell; std::getline(stream, cell, ',');)
        cells.push_back(Trimmed(cell));
    return cells;
}

/// The commands that start the transmissions of a plan, each with all that is set so far.
std::vector<std::string> ExpectedStarts(const std::string& plan) {
    constexpr std::array<std::pair<const char*, const char*>, 10> options{
        {{"Band", "-wifi-band"},
         {"Chains", "-wifi-tx-chains-from-file"},
         {"Bandwidth", "-wifi-bandwidth"},
         {"Channel", "-wifi-channel"},
         {"Bandwidth Mode", "-wifi-bw-mode"},
         {"Rate", "-wifi-rate"},
         {"Mode", "-wifi-tx-transm-mode"},
         {"Resource Unit", "-wifi-resource-unit"},
         {"Specific Resource unit", "-wifi-specific-resource-unit"},
         {"Large RU Size", "-wifi-large-ru"}}};
    std::istringstream stream(plan);
    std::string line;
    std::getline(stream, line);
    const std::vector<std::string> titles = CellsOf(line);
    std::map<std::string, std::string> values;
    std::vector<std::string> starts;
    while (std::getline(stream, line)) {
        const std::vector<std::string> cells = CellsOf(line);
        for (std::size_t place = 0; place < std::min(titles.size(), cells.size()); ++place) {
            if (!cells[place].empty() && cells[place] != "-")
                values[titles[place]] = cells[place];
        }
        std::string command = "CLI -1 -vemo";
        for (const auto& [title, option] : options) {
            if (!values.contains(title))
                continue;
            const std::string& value = values[title];
            const std::string quote = value.find(' ') == std::string::npos ? "" : "\"";
            command.append(" ").append(option).append(" ").append(quote + value + quote);
        }
        starts.push_back(command + " -wifi-calibrate-tx -wifi-mode tx_modulated -wifi-start");
    }
    return starts;
}

/// The commands of a daemon's log that start a transmission.
std::vector<std::string> StartsIn(const std::string& log) {
    const std::string before = "\"command\":\"";
    std::vector<std::string> starts;
    std::istringstream stream(log);
    for (std::string line; std::getline(stream, line);) {
        const std::size_t first = line.find(before) + before.size();
        std::string command = line.substr(first, line.find("\",\"bodyBytes\"") - first);
        for (std::size_t place = 0; (place = command.find("\\\"", place)) != std::string::npos;)
            command.erase(place, 1);
        if (command.ends_with(" -wifi-start"))
            starts.push_back(command);
    }
    return starts;
}

struct Case {
    std::string plan;
    int lines;

    friend void PrintTo(const Case& test, std::ostream* stream) {
        *stream << test.plan << " in chunks of " << test.lines;
    }
};

std::vector<Case> Cases() {
    std::vector<Case> cases;
    for (const auto& [name, content] : Plans()) {
        for (const int lines : {1, 3, 200}) {
            // Each chunk is a start of the client, which costs wine a hundred times what it costs
            // Linux.
            const auto total = std::count(content.begin(), content.end(), '\n');
            const bool isWine = std::string(TextMode("\n")) != "\n";
            if (total / lines <= (isWine ? 5 : 50))
                cases.push_back({name, lines});
        }
    }
    return cases;
}

class SplitPlanTest : public testing::TestWithParam<Case> {
protected:
    ProcessResult Split() const {
        return m_tests.Supervise(
            {"split", "plan.csv", "--lines", std::to_string(GetParam().lines), "-o", "chunks"});
    }

    std::vector<std::string> ChunkNames() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_tests.Path("chunks"))) {
            const std::string name = entry.path().filename().string();
            if (name.starts_with("chunk-"))
                names.push_back("chunks/" + name);
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    PowerTests m_tests;
};

TEST_P(SplitPlanTest, WhatIsSentForTheChunksIsWhatThePlanComesTo) {
    const std::string plan = Plans().at(GetParam().plan);
    m_tests.Write("plan.csv", plan);
    const ProcessResult result = Split();
    if (!soundPlans.contains(GetParam().plan)) {
        EXPECT_EQ(result.exitCode, 2) << result.err;
        EXPECT_THAT(result.err, testing::HasSubstr("Nothing was split: "));
        EXPECT_FALSE(std::filesystem::exists(m_tests.Path("chunks")));
        return;
    }
    ASSERT_EQ(result.exitCode, 0) << result.err;
    {
        const Simulator daemon({"--request-log", m_tests.Path("requests.log")});
        for (const std::string& chunk : ChunkNames()) {
            EXPECT_EQ(m_tests.Supervise({"check", chunk}).exitCode, 0) << chunk;
            m_tests.Command(daemon, {"-wifi-test-by-file", chunk});
        }
    }
    EXPECT_EQ(StartsIn(m_tests.Read("requests.log")), ExpectedStarts(plan));
    EXPECT_EQ(m_tests.Read("chunks/plan.csv"), plan);
}

INSTANTIATE_TEST_SUITE_P(, SplitPlanTest, testing::ValuesIn(Cases()), [](const auto& test) {
    return test.param.plan + std::to_string(test.param.lines);
});

} // namespace
} // namespace EndToEnd
