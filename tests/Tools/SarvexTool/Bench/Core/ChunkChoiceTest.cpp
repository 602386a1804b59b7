#include "Tools/SarvexTool/Bench/Core/ChunkChoice.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;
using Used = ChunkChoice::Used;
using Unused = ChunkChoice::Unused;

const std::vector<ManifestChunk> chunks{{"chunk-0001.csv", "aa", {2, 4}},
                                        {"chunk-0002.csv", "bb", {5, 6}}};

FoundRun Complete(const std::string& directory, std::size_t chunk) {
    return {directory, chunks[chunk].file, chunks[chunk].sha256, true, chunks[chunk].lines.Count()};
}

FoundRun Ended(const std::string& directory, std::size_t chunk, std::size_t lines) {
    return {directory, chunks[chunk].file, chunks[chunk].sha256, false, lines};
}

class ChunkChoiceTest : public testing::Test {
protected:
    ChunkChoice Choose(const std::vector<FoundRun>& runs, bool isPartial = false) {
        return ChooseRuns(chunks, runs, isPartial, m_problems);
    }

    std::vector<std::string> Problems() const {
        std::vector<std::string> texts;
        for (const Problem& problem : m_problems.InOrder())
            texts.push_back(problem.text);
        return texts;
    }

private:
    ProblemList m_problems;
};

TEST_F(ChunkChoiceTest, TheCompleteRunOfEachChunkIsUsed) {
    const ChunkChoice choice = Choose({Ended("runs/x", 1, 1), Complete("runs/z", 1),
                                       Complete("runs/y", 0), Ended("runs/a", 0, 3)});
    EXPECT_THAT(choice.used, ElementsAre(Optional(Used{2, 3}), Optional(Used{1, 2})));
    EXPECT_THAT(choice.unused, ElementsAre(Unused{0, 1, 1}, Unused{3, 0, 3}));
    EXPECT_EQ(choice.complete, 2u);
    EXPECT_THAT(Problems(), IsEmpty());
}

TEST_F(ChunkChoiceTest, AChunkWithoutACompleteRunIsTold) {
    Choose({Ended("runs/a", 0, 2), Ended("runs/b", 0, 0)});
    EXPECT_THAT(Problems(), ElementsAre("chunk-0001.csv (lines 2 to 4) has no complete run, only 2 "
                                        "that are not",
                                        "chunk-0002.csv (lines 5 to 6) was not run"));
}

TEST_F(ChunkChoiceTest, APartialOneTakesTheFirstRunWithTheMostLines) {
    const ChunkChoice choice =
        Choose({Ended("a", 0, 1), Ended("b", 0, 2), Ended("c", 0, 2), Ended("d", 1, 0)}, true);
    EXPECT_THAT(choice.used, ElementsAre(Optional(Used{1, 2}), std::nullopt));
    EXPECT_THAT(choice.unused, ElementsAre(Unused{0, 0, 1}, Unused{2, 0, 2}, Unused{3, 1, 0}));
    EXPECT_EQ(choice.complete, 0u);
    EXPECT_THAT(Problems(), IsEmpty());
}

TEST_F(ChunkChoiceTest, APartialOneTakesACompleteRunBeforeAllOthers) {
    const ChunkChoice choice = Choose({Ended("a", 0, 3), Complete("b", 0)}, true);
    EXPECT_THAT(choice.used, ElementsAre(Optional(Used{1, 3}), std::nullopt));
    EXPECT_EQ(choice.complete, 1u);
}

TEST_F(ChunkChoiceTest, NoRunHasMoreLinesThanItsChunk) {
    const ChunkChoice choice = Choose({Ended("a", 0, 7)}, true);
    EXPECT_THAT(choice.used, ElementsAre(Optional(Used{0, 3}), std::nullopt));
}

TEST_F(ChunkChoiceTest, TwoCompleteRunsOfAChunkAreToldEvenInPart) {
    for (const bool isPartial : {false, true}) {
        const ChunkChoice choice =
            ChunkChoiceTest::Choose({Complete("runs/a", 0), Ended("runs/b", 0, 1),
                                     Complete("runs/c", 0), Complete("runs/d", 1)},
                                    isPartial);
        EXPECT_EQ(choice.used[0], std::nullopt);
    }
    EXPECT_THAT(Problems(),
                testing::Each("chunk-0001.csv (lines 2 to 4) has more than one complete run: "
                              "runs/a, runs/c; move all but one away from the runs of the "
                              "chunks"));
    EXPECT_EQ(Problems().size(), 2u);
}

TEST_F(ChunkChoiceTest, ARunOfSomethingElseIsToldEvenInPart) {
    FoundRun other = Complete("runs/other", 0);
    other.testFile = "plan.csv";
    FoundRun older = Complete("runs/older", 0);
    older.sha256 = "cc";
    Choose({Complete("a", 0), other, older, Complete("b", 1)}, true);
    EXPECT_THAT(
        Problems(),
        ElementsAre("runs/other is a run of plan.csv, which is none of the chunks; move it away "
                    "from the runs of the chunks",
                    "runs/older is a run of another chunk-0001.csv than the manifest's: their "
                    "hashes differ; move it away from the runs of the chunks"));
}

} // namespace
} // namespace Bench
