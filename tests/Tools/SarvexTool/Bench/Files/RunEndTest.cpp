#include "Tools/SarvexTool/Bench/Files/RunEnd.h"
#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace Bench {
namespace {

class RunEndTest : public testing::Test {
protected:
    /// What facts tell of a run of five journalled lines.
    std::optional<EarlyEnd> Read(const std::string& facts) const {
        return ReadEarlyEnd(m_directory.Create("run.json", facts), 5);
    }

    TestSupport::TemporaryDirectory m_directory;
};

TEST_F(RunEndTest, RunWithAllItsLinesIsComplete) {
    EXPECT_EQ(Read(R"({"linesTotal": 5, "linesDone": 5, "outcome": "complete"})"), std::nullopt);
    EXPECT_EQ(Read(R"({"outcome": "complete"})"), std::nullopt);
    EXPECT_EQ(Read(R"({"linesTotal": 5, "linesDone": 4, "outcome": ""})"), std::nullopt)
        << "killed after its last line";
}

TEST_F(RunEndTest, RunWithFewerLinesEndedEarly) {
    const EarlyEnd early{5, 12};
    EXPECT_EQ(Read(R"({"linesTotal": 12, "linesDone": 5, "outcome": "interrupted"})"), early);
    EXPECT_EQ(Read(R"({"linesTotal": 12, "linesDone": 12, "outcome": "complete"})"), early)
        << "the journal was cut";
    EXPECT_EQ(Read(R"({"linesTotal": 12})"), early);
}

TEST_F(RunEndTest, RunThatIsNotKnownToBeCompleteEndedEarly) {
    const EarlyEnd early{5, std::nullopt};
    EXPECT_EQ(Read("{}"), early);
    EXPECT_EQ(Read(R"({"outcome": "interrupted"})"), early);
    EXPECT_EQ(Read(R"({"outcome": null, "linesTotal": null})"), early);
    EXPECT_EQ(ReadEarlyEnd(m_directory.Path("missing.json"), 5), early);
}

TEST_F(RunEndTest, FactsThatCannotBeReadAreTold) {
    for (const char* facts : {"", "[", "[]", "{\"linesTotal\": -1}", "{\"linesTotal\": \"5\"}",
                              "{\"outcome\": 5}", "{\"a\": \"\xFF\"}"})
        EXPECT_THROW(Read(facts), BadInput) << facts;
    std::filesystem::create_directory(m_directory.Path("folder"));
    EXPECT_THROW(ReadEarlyEnd(m_directory.Path("folder"), 5), BadInput);
}

} // namespace
} // namespace Bench
