#include "Tools/SarvexTool/Bench/Files/RunRecord.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "tests/Support/Files.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace Bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RunRecordTest : public testing::Test {
protected:
    RunRecord Read(const std::string& facts) const {
        return ReadRunRecord(m_directory.Create("run.json", facts));
    }

    /// What facts tell of the end of a run of five journalled lines.
    std::optional<EarlyEnd> EndIn(const std::string& facts) const {
        return Read(facts).EarlyEndAfter(5);
    }

    std::string ProblemOf(const std::string& facts) const {
        try {
            Read(facts);
        } catch (const BadInput& bad) {
            EXPECT_EQ(bad.File(), m_directory.Path("run.json"));
            return bad.Problems().front().text;
        }
        return "none";
    }

    TestSupport::TemporaryDirectory m_directory;
};

TEST_F(RunRecordTest, RunWithAllItsLinesIsComplete) {
    EXPECT_EQ(EndIn(R"({"linesTotal": 5, "linesDone": 5, "outcome": "complete"})"), std::nullopt);
    EXPECT_EQ(EndIn(R"({"outcome": "complete"})"), std::nullopt);
    EXPECT_EQ(EndIn(R"({"linesTotal": 5, "linesDone": 4, "outcome": ""})"), std::nullopt)
        << "killed after its last line";
}

TEST_F(RunRecordTest, RunWithFewerLinesEndedEarly) {
    const EarlyEnd early{5, 12};
    EXPECT_EQ(EndIn(R"({"linesTotal": 12, "linesDone": 5, "outcome": "interrupted"})"), early);
    EXPECT_EQ(EndIn(R"({"linesTotal": 12, "linesDone": 12, "outcome": "complete"})"), early)
        << "the journal was cut";
    EXPECT_EQ(EndIn(R"({"linesTotal": 12})"), early);
}

TEST_F(RunRecordTest, RunThatIsNotKnownToBeCompleteEndedEarly) {
    const EarlyEnd early{5, std::nullopt};
    EXPECT_EQ(EndIn("{}"), early);
    EXPECT_EQ(EndIn(R"({"outcome": "interrupted"})"), early);
    EXPECT_EQ(EndIn(R"({"outcome": null, "linesTotal": null})"), early);
    EXPECT_EQ(ReadRunRecord(m_directory.Path("missing.json")).EarlyEndAfter(5), early);
}

TEST_F(RunRecordTest, WhatIsMissingOfThePlaceIsNotKnown) {
    EXPECT_EQ(Read(R"({"bench": "b", "attempt": 2})").place, (RunPlace{"b", std::nullopt, 2}));
    EXPECT_EQ(Read(R"({"linesTotal": 2})").place, RunPlace());
    EXPECT_EQ(ReadRunRecord(m_directory.Path("missing.json")).place, RunPlace());
}

TEST_F(RunRecordTest, AMergedRunHasASourceForEachOfItsRuns) {
    EXPECT_THAT(Read(R"({"sources":[{"firstLine":2,"lastLine":5,"bench":"a","attempt":1},)"
                     R"({"firstLine":6,"lastLine":6,"device":"b"}],"bench":"not this"})")
                    .sources.All(),
                ElementsAre(Source{{2, 5}, {"a", std::nullopt, 1}},
                            Source{{6, 6}, {std::nullopt, "b", std::nullopt}}));
}

TEST_F(RunRecordTest, AnyOtherRunIsOneSourceOfAllLines) {
    EXPECT_THAT(Read(R"({"device":"DUT-42"})").sources.All(),
                ElementsAre(Source{{1, 0xFFFFFFFF}, {std::nullopt, "DUT-42", std::nullopt}}));
}

TEST_F(RunRecordTest, WithoutAPlaceThereIsNoSource) {
    EXPECT_THAT(Read("{}").sources.All(), IsEmpty());
    EXPECT_THAT(Read(R"({"sources":[]})").sources.All(), IsEmpty());
    EXPECT_THAT(ReadRunRecord(m_directory.Path("none")).sources.All(), IsEmpty());
}

TEST_F(RunRecordTest, FactsThatCannotBeReadAreTold) {
    for (const char* facts :
         {"", "[", "[]", R"({"linesTotal": -1})", R"({"linesTotal": "5"})", R"({"outcome": 5})",
          R"({"bench": 1})", R"({"attempt": -1})", "{\"a\": \"\xFF\"}"})
        EXPECT_THROW(Read(facts), BadInput) << facts;
    std::filesystem::create_directory(m_directory.Path("folder"));
    EXPECT_THROW(ReadRunRecord(m_directory.Path("folder")), BadInput);
}

TEST_F(RunRecordTest, WhatIsWrongIsSaid) {
    EXPECT_EQ(ProblemOf("x"), "there is no object of JSON");
    EXPECT_EQ(ProblemOf(R"({"linesTotal":-1,"sources":{}})"),
              "the value of \"linesTotal\" is no count");
    EXPECT_EQ(ProblemOf(R"({"sources":{},"bench":1})"), "the value of \"sources\" is no list");
    EXPECT_EQ(ProblemOf(R"({"sources":[{"firstLine":2}]})"), "the key \"lastLine\" is missing");
    EXPECT_EQ(ProblemOf(R"({"sources":[{"firstLine":2,"lastLine":1}]})"),
              "the sources are not in the order of their lines");
    EXPECT_EQ(ProblemOf(R"({"sources":[],"bench":1})"), "the value of \"bench\" is no text");
}

} // namespace
} // namespace Bench
