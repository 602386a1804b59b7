#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/ResultTreeWriter.h"
#include "tests/EndToEnd/Support/Bench.h"
#include "tests/EndToEnd/Support/Simulator.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

// Makes result.xml again of the rows that the client has written, and compares it with the client's
// own.

namespace Bench {
namespace {

const std::string header = "Band,Chains,Bandwidth,Channel,Rate";

class ResultTreeEndToEndTest : public testing::Test {
protected:
    ResultTreeEndToEndTest() {
        m_bench.AddProgram("SarvexToolClientWithoutPauses", "SarvexToolClientWithoutPauses");
        m_bench.SetPort(m_simulator.Port());
    }

    /// Runs a test file of that content, byte for byte, and makes its tree again.
    void ExpectSameTree(const std::string& content) {
        m_bench.Write("test.csv", content);
        const EndToEnd::ProcessResult result =
            EndToEnd::Process(
                m_bench.Path(EndToEnd::ExecutableName("SarvexToolClientWithoutPauses")),
                {"-wifi-test-by-file", "test.csv"}, m_bench.Directory())
                .Wait(280);
        ASSERT_EQ(result.exitCode, 0) << result.err;
        const std::string tree = NameOf(std::filesystem::path(m_bench.Path("rebuilt.xml")));
        WriteResultTree({NameOf(std::filesystem::path(m_bench.Path("result.csv"))),
                         FirstLine("test.csv"), "DE"},
                        tree);
        EXPECT_NE(m_bench.Read("result.xml"), "");
        EXPECT_EQ(m_bench.Read("rebuilt.xml"), m_bench.Read("result.xml"));
    }

private:
    std::string FirstLine(const std::string& name) const {
        std::ifstream file{std::filesystem::path(m_bench.Path(name))};
        std::string line;
        std::getline(file, line);
        return line;
    }

    EndToEnd::Bench m_bench;
    EndToEnd::Simulator m_simulator{{"--mcc", "DE"}};
};

TEST_F(ResultTreeEndToEndTest, ExamplesGiveTheClientsTree) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(SARVEX_SOURCE_DIR "/examples")) {
        if (entry.path().extension() != ".csv")
            continue;
        SCOPED_TRACE(entry.path().filename().string());
        ExpectSameTree(TestSupport::ReadBytes(entry.path().string()));
        ++count;
    }
    EXPECT_GE(count, 5);
}

TEST_F(ResultTreeEndToEndTest, OddFilesGiveTheClientsTree) {
    const std::pair<const char*, std::string> files[] = {
        {"CR LF", header + "\r\n5,A,80,36,HE0\r\n5,B,80,36,HE1\r\n"},
        {"no end of the last line", header + "\n5,A,80,36,HE0\n5,AB,80,36,HE0"},
        {"surplus and missing cells", header + "\n5,A,80,36,HE0,extra,more\n5,A\n5\n\n,,\n"},
        {"unknown column", "Band,Chanel\n5,36\n6,37\n"},
        {"header without lines", header + "\n"},
        {"header without its end", header},
        {"empty header", "\n5,A\n"},
        {"empty file", ""},
        {"cells of blanks", header + "\n ,A,\t,36, \n5, A ,80 ,\t36,HE0\n"},
        {"lone CR", header + "\n5,A,\r,36,HE0\n5\r,A,80,3\r6,HE0\nA\rB\n"},
        {"CR at the ends", header + "\r\r\n5,A,80,36,HE0\r\r\n\r\n\r"},
        {"name given twice", "Band,Chains,Band\n5,A,6\n"},
        {"the client's end-of-file byte", header + "\n5,A,80,36,HE\x1A"
                                                   "0\n6,A,80,5,HE0\n"},
        {"what means something in XML", header + "\n<\"&'>,A+B,]]>,<!--,\xFF\n\x01,A/><x,,,\n"},
    };
    for (const auto& [name, content] : files) {
        SCOPED_TRACE(name);
        ExpectSameTree(content);
    }
}

} // namespace
} // namespace Bench
