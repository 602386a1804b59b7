#include "Tools/SarvexTool/Bench/Files/ResultTreeWriter.h"
#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

// That the tree is the client's is tested with the client (ResultTreeEndToEndTest.cpp).

namespace Bench {
namespace {

const std::string titles = ",Chain-A Power, Chain B Power\n";

class ResultTreeWriterTest : public testing::Test {
protected:
    void Write(const std::string& rows, const std::string& header) const {
        WriteResultTree({m_directory.Create("result.csv", rows), header, "US"}, Tree());
    }

    /// What is said of rows that cannot be filed: "LINE: TEXT".
    std::string ProblemOf(const std::string& rows, const std::string& header) const {
        try {
            Write(rows, header);
        } catch (const BadInput& bad) {
            EXPECT_EQ(bad.File(), m_directory.Path("result.csv"));
            return std::to_string(bad.Problems().at(0).line) + ": " + bad.Problems().at(0).text;
        }
        return "none";
    }

    std::string Tree() const { return m_directory.Path("result.xml"); }
    /// As a text of this system.
    std::string Written() const {
        std::ifstream file(Tree());
        return {std::istreambuf_iterator<char>(file), {}};
    }
    bool HasPart() const { return std::filesystem::exists(Tree() + ".part"); }

    TestSupport::TemporaryDirectory m_directory;
};

TEST_F(ResultTreeWriterTest, RowsAreFiledByTheColumnsOfTheTestFile) {
    m_directory.Create("result.xml", "");
    Write("Chains" + titles + "B,17.5,18\n", "Chains");
    EXPECT_EQ(Written(), "<?xml version=\"1.0\" ?>\n"
                         "<PowerTable MCC=\"US\" OTPVersion=\"-\">\n"
                         "\t<Band value=\"-\">\n"
                         "\t\t<Bandwidth value=\"- MHz\">\n"
                         "\t\t\t<Channel value=\"-\">\n"
                         "\t\t\t\t<Rate value=\"-\">\n"
                         "\t\t\t\t\t<chainB BandwidthMode=\"-\" LargeRUSize=\"-\" "
                         "ResourceUnit=\"-\" SpecificResourceUnit=\"-\" power=\"18dBm\"/>\n"
                         "\t\t\t\t</Rate>\n"
                         "\t\t\t</Channel>\n"
                         "\t\t</Bandwidth>\n"
                         "\t</Band>\n"
                         "</PowerTable>\n");
    EXPECT_FALSE(HasPart());
}

TEST_F(ResultTreeWriterTest, HeaderWithAnUnknownColumnIsNotInTheRowsAndCountsForNothing) {
    Write("B,17.5,18\n", "Chains,Chanel");
    EXPECT_NE(Written().find("<chain- "), std::string::npos);
    Write("", "Chains,Chanel");
    EXPECT_EQ(Written(), "<?xml version=\"1.0\" ?>\n<PowerTable MCC=\"US\" OTPVersion=\"-\"/>\n");
}

TEST_F(ResultTreeWriterTest, RowsThatCannotBeTheClientsAreNamedByTheirLine) {
    const std::string noHeader =
        "1: the line is not the header of the test file with the titles of the powers";
    EXPECT_EQ(ProblemOf("", "Band"), noHeader);
    EXPECT_EQ(ProblemOf("Chains" + titles, "Band"), noHeader);
    EXPECT_EQ(ProblemOf("Band" + titles + "5,17.5,18\n5,17.", "Band"),
              "3: the line has no end, so that it is not whole");
    EXPECT_EQ(ProblemOf("Band" + titles + "5,17.5,18\n\n", "Band"),
              "3: the line does not end in two powers");
    EXPECT_EQ(ProblemOf("5\n", "Unknown"), "1: the line does not end in two powers");
    EXPECT_FALSE(std::filesystem::exists(Tree()));
    EXPECT_FALSE(HasPart());
}

TEST_F(ResultTreeWriterTest, RowsThatCannotBeReadAreTold) {
    try {
        WriteResultTree({m_directory.Path("missing.csv"), "", "US"}, Tree());
        FAIL() << "nothing was thrown";
    } catch (const BadInput& bad) {
        EXPECT_EQ(bad.Problems().at(0).text, "cannot be read (No such file or directory)");
    }
    EXPECT_THROW(WriteResultTree({m_directory.Path(), "", "US"}, Tree()), BadInput);
}

TEST_F(ResultTreeWriterTest, TreeThatCannotBeWrittenIsTold) {
    const std::string rows = m_directory.Create("result.csv", titles);
    const auto problemOf = [&rows](const std::string& tree) {
        try {
            WriteResultTree({rows, "", "US"}, tree);
        } catch (const BadOutput& bad) {
            EXPECT_EQ(bad.File(), tree);
            return bad.Problems().at(0).text;
        }
        return std::string("none");
    };
    EXPECT_EQ(problemOf(m_directory.Path("missing") + "/result.xml"),
              "cannot be written (No such file or directory)");
    std::filesystem::create_directory(Tree());
    m_directory.Create("result.xml/file", "");
    EXPECT_EQ(problemOf(Tree()).substr(0, 20), "cannot be replaced (");
    EXPECT_FALSE(HasPart());
}

} // namespace
} // namespace Bench
