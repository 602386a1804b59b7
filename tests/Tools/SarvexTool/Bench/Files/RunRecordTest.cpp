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
    /// The name of a run.json with these facts.
    std::string File(const std::string& facts) const {
        return m_directory.Create("run.json", facts);
    }

    /// What facts tell of a run of five journalled lines.
    std::optional<EarlyEnd> End(const std::string& facts) const {
        return ReadEarlyEnd(File(facts), 5);
    }

    RunPlace Place(const std::string& facts) const { return ReadPlace(File(facts)); }

    std::vector<Source> AllSources(const std::string& facts) const {
        return ReadSources(File(facts)).All();
    }

    std::string ProblemOfSources(const std::string& facts) const {
        try {
            AllSources(facts);
        } catch (const BadInput& bad) {
            EXPECT_EQ(bad.File(), m_directory.Path("run.json"));
            return bad.Problems().front().text;
        }
        return "none";
    }

    TestSupport::TemporaryDirectory m_directory;
};

TEST_F(RunRecordTest, RunWithAllItsLinesIsComplete) {
    EXPECT_EQ(End(R"({"linesTotal": 5, "linesDone": 5, "outcome": "complete"})"), std::nullopt);
    EXPECT_EQ(End(R"({"outcome": "complete"})"), std::nullopt);
    EXPECT_EQ(End(R"({"linesTotal": 5, "linesDone": 4, "outcome": ""})"), std::nullopt)
        << "killed after its last line";
}

TEST_F(RunRecordTest, RunWithFewerLinesEndedEarly) {
    const EarlyEnd early{5, 12};
    EXPECT_EQ(End(R"({"linesTotal": 12, "linesDone": 5, "outcome": "interrupted"})"), early);
    EXPECT_EQ(End(R"({"linesTotal": 12, "linesDone": 12, "outcome": "complete"})"), early)
        << "the journal was cut";
    EXPECT_EQ(End(R"({"linesTotal": 12})"), early);
}

TEST_F(RunRecordTest, RunThatIsNotKnownToBeCompleteEndedEarly) {
    const EarlyEnd early{5, std::nullopt};
    EXPECT_EQ(End("{}"), early);
    EXPECT_EQ(End(R"({"outcome": "interrupted"})"), early);
    EXPECT_EQ(End(R"({"outcome": null, "linesTotal": null})"), early);
    EXPECT_EQ(ReadEarlyEnd(m_directory.Path("missing.json"), 5), early);
}

TEST_F(RunRecordTest, FactsWhoseEndCannotBeReadAreTold) {
    for (const char* facts : {"", "[", "[]", "{\"linesTotal\": -1}", "{\"linesTotal\": \"5\"}",
                              "{\"outcome\": 5}", "{\"a\": \"\xFF\"}"})
        EXPECT_THROW(End(facts), BadInput) << facts;
    std::filesystem::create_directory(m_directory.Path("folder"));
    EXPECT_THROW(ReadEarlyEnd(m_directory.Path("folder"), 5), BadInput);
}

TEST_F(RunRecordTest, WhatIsMissingOfThePlaceIsNotKnown) {
    EXPECT_EQ(Place(R"({"bench": "b", "attempt": 2})"), (RunPlace{"b", std::nullopt, 2}));
    EXPECT_EQ(Place(R"({"linesTotal": 2})"), RunPlace());
    EXPECT_EQ(ReadPlace(m_directory.Path("missing.json")), RunPlace());
}

TEST_F(RunRecordTest, FactsWhosePlaceCannotBeReadAreTold) {
    for (const char* facts : {"", "[]", R"({"bench": 1})", R"({"attempt": -1})"})
        EXPECT_THROW(Place(facts), BadInput) << facts;
    std::filesystem::create_directory(m_directory.Path("folder"));
    EXPECT_THROW(ReadPlace(m_directory.Path("folder")), BadInput);
}

TEST_F(RunRecordTest, AMergedRunHasASourceForEachOfItsRuns) {
    EXPECT_THAT(AllSources(R"({"sources":[{"firstLine":2,"lastLine":5,"bench":"a","attempt":1},)"
                           R"({"firstLine":6,"lastLine":6,"device":"b"}],"bench":"not this"})"),
                ElementsAre(Source{{2, 5}, {"a", std::nullopt, 1}},
                            Source{{6, 6}, {std::nullopt, "b", std::nullopt}}));
}

TEST_F(RunRecordTest, AnyOtherRunIsOneSourceOfAllLines) {
    EXPECT_THAT(AllSources(R"({"device":"DUT-42"})"),
                ElementsAre(Source{{1, 0xFFFFFFFF}, {std::nullopt, "DUT-42", std::nullopt}}));
}

TEST_F(RunRecordTest, WithoutAPlaceThereIsNoSource) {
    EXPECT_THAT(AllSources("{}"), IsEmpty());
    EXPECT_THAT(AllSources(R"({"sources":[]})"), IsEmpty());
    EXPECT_THAT(ReadSources(m_directory.Path("none")).All(), IsEmpty());
}

TEST_F(RunRecordTest, WhatIsWrongWithTheSourcesIsTold) {
    EXPECT_EQ(ProblemOfSources("x"), "there is no object of JSON");
    EXPECT_EQ(ProblemOfSources(R"({"sources":{}})"), "the value of \"sources\" is no list");
    EXPECT_EQ(ProblemOfSources(R"({"sources":[{"firstLine":2}]})"),
              "the key \"lastLine\" is missing");
    EXPECT_EQ(ProblemOfSources(R"({"sources":[{"firstLine":2,"lastLine":1}]})"),
              "the sources are not in the order of their lines");
}

} // namespace
} // namespace Bench
