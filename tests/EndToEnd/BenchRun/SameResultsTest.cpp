#include "tests/EndToEnd/BenchRun/PowerTests.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <map>

// A supervised run writes what the client alone writes, wherever the file is cut into segments.

namespace EndToEnd {
namespace {

std::string Example(const std::string& name) {
    return TestSupport::ReadBytes(std::string(SARVEX_SOURCE_DIR) + "/examples/" + name);
}

std::string WithLineEnds(std::string text, const std::string& lineEnd) {
    for (std::size_t place = 0; (place = text.find('\n', place)) != std::string::npos;
         place += lineEnd.size())
        text.replace(place, 1, lineEnd);
    return text;
}

const std::string header = "Band,Chains,Bandwidth,Channel,Rate\n";
const std::string lines = "6,AB,80,101,HE-MCS3\n"
                          "-,A,-,-,-\n"
                          "-,-,-,33,HE-MCS7\n"
                          "2.4,B,20,6,54\n"
                          "5,AB,40,36,-\n";

/// By what is odd about them.
std::map<std::string, std::string> TestFiles() {
    return {
        {"Short", Example("short.csv")},
        {"Sweep", Example("sweep.csv")},
        {"Oddities", Example("oddities.csv")},
        {"Spreadsheet", Example("spreadsheet.csv")},
        {"CrLf", WithLineEnds(header + lines, "\r\n")},
        {"LineEndsOfBothKinds", WithLineEnds(header, "\r\n") + lines},
        {"CrAlone", WithLineEnds(header + lines, "\r")},
        {"NoLastLineEnd", header + lines + "-,A,-,-,-"},
        {"CrAtTheEnd", header + lines + "-,A,-,-,-\r"},
        {"SurplusCells", header + "6,AB,80,101,HE-MCS3,x\n" + lines + "5,A,20,36,MCS0,,,y,\n"},
        {"MissingCells", header + lines + "6\n5,A\n-\n,\n6,AB,80,1\n"},
        {"UnknownColumn", "Band,Chanel,Chains\n6,101,A\n5,36,B\n5,40,-\n"},
        {"HeaderOnly", header},
        {"HeaderWithoutLineEnd", "Band,Chains"},
        {"UnknownColumnOnly", "Chanel\n"},
        {"Empty", ""},
        {"OneLineEnd", "\n"},
        {"LineEndsOnly", "\n\n\n"},
        {"CellsOfBlanks", header + lines + " , ,  ,\t,-\n" + lines + "   \n -,A ,20, 36,MCS0\n"},
        {"CellOfOneCr", header + lines + "\r,-,-,-,-\n-,-,-,-,\r\n\r\n" + lines},
        {"EmptyLines", header + "\n" + lines + "\n\n" + lines + "\n"},
        {"EmptyCells", header + lines + ",A,,,\n,,,,\n-,-,20,-,\n"},
        {"EndOfText", header + lines + "-,A,-,\x1A,-\n" + lines},
        {"ByteOrderMark", "\xEF\xBB\xBF" + header + lines},
        {"NoText", header + "6,AB,80,101,\xFF\xFE\x80\n-,A,\x01,-,-\n" + lines},
        {"MarkupInCells", header + lines + "-,A,<20>&\"x\",-,'\n-,A,&amp;,-,-\n"},
        {"RefusedBeforeMeasured", header + "7,A,20,36,MCS0\n-,AB,-,-,-\n5,-,-,-,-\n" + lines},
        {"ColumnTwice", "Band,Chains,Band,Channel\n6,A,5,36\n-,-,6,101\n5,B,-,-\n2.4,A,5,40\n"},
        {"TextOfAnAnswer",
         header + "6,AB,80,101,Done\n-,A,-,Sarvex tool RETURN CODE,HE-MCS3\n" + lines},
        {"LongCell", header + lines + "6,A,20,1," + std::string(3000, 'x') + "\n" + lines}};
}

struct Case {
    std::string file;
    int segment;

    friend void PrintTo(const Case& test, std::ostream* stream) {
        *stream << test.file << " in segments of " << test.segment;
    }
};

std::vector<Case> Cases() {
    std::vector<Case> cases;
    for (const auto& [name, content] : TestFiles()) {
        for (const int segment : {1, 2, 3, 500}) {
            // A start costs wine a hundred times what it costs Linux.
            const bool isSlow = name == "Sweep" && std::string(TextMode("\n")) != "\n";
            if (!isSlow || segment == 500)
                cases.push_back({name, segment});
        }
    }
    return cases;
}

class SameResultsTest : public testing::TestWithParam<Case> {};

TEST_P(SameResultsTest, AsTheClientAlone) {
    const PowerTests tests;
    tests.Write("test.csv", TestFiles().at(GetParam().file));
    const Results alone = tests.RunAlone("test.csv");
    const Simulator daemon;
    const ProcessResult result = tests.Supervise(tests.NewRun(
        daemon, "test.csv", "run", {"--segment", std::to_string(GetParam().segment), "--force"}));
    // 1 where a line was not measured.
    EXPECT_THAT(result.exitCode, testing::AnyOf(0, 1)) << result.out << result.err;
    EXPECT_THAT(result.out, testing::StartsWith("The run is complete: "));
    const Results supervised = tests.ResultsIn("run");
    EXPECT_EQ(supervised.csv, alone.csv);
    EXPECT_EQ(supervised.xml, alone.xml);
    EXPECT_EQ(tests.Read("run/test-file.csv"), tests.Read("test.csv"));
    EXPECT_FALSE(std::filesystem::exists(tests.Path("run/client")));
}

INSTANTIATE_TEST_SUITE_P(, SameResultsTest, testing::ValuesIn(Cases()), [](const auto& test) {
    return test.param.file + std::to_string(test.param.segment);
});

} // namespace
} // namespace EndToEnd
