#include "Tools/SarvexTool/Bench/Files/RunSourceFields.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "tests/Support/Files.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RunSourceFieldsTest : public testing::Test {
protected:
    std::vector<Source> Read(const std::string& facts) const {
        return ReadSources(m_directory.Create("run.json", facts)).All();
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

TEST_F(RunSourceFieldsTest, AMergedRunHasOneForEachOfItsRuns) {
    EXPECT_THAT(Read(R"({"sources":[{"firstLine":2,"lastLine":5,"bench":"a","attempt":1},)"
                     R"({"firstLine":6,"lastLine":6,"device":"b"}],"bench":"not this"})"),
                ElementsAre(Source{{2, 5}, {"a", std::nullopt, 1}},
                            Source{{6, 6}, {std::nullopt, "b", std::nullopt}}));
}

TEST_F(RunSourceFieldsTest, AnyOtherRunIsOneOfAllLines) {
    EXPECT_THAT(Read(R"({"device":"DUT-42"})"),
                ElementsAre(Source{{1, 0xFFFFFFFF}, {std::nullopt, "DUT-42", std::nullopt}}));
}

TEST_F(RunSourceFieldsTest, WithoutAPlaceThereIsNone) {
    EXPECT_THAT(Read("{}"), IsEmpty());
    EXPECT_THAT(Read(R"({"sources":[]})"), IsEmpty());
    EXPECT_THAT(ReadSources(m_directory.Path("none")).All(), IsEmpty());
}

TEST_F(RunSourceFieldsTest, WhatIsWrongIsTold) {
    EXPECT_EQ(ProblemOf("x"), "there is no object of JSON");
    EXPECT_EQ(ProblemOf(R"({"sources":{}})"), "the value of \"sources\" is no list");
    EXPECT_EQ(ProblemOf(R"({"sources":[{"firstLine":2}]})"), "the key \"lastLine\" is missing");
    EXPECT_EQ(ProblemOf(R"({"sources":[{"firstLine":2,"lastLine":1}]})"),
              "the sources are not in the order of their lines");
}

} // namespace
} // namespace Bench
