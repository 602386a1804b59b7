#include "tests/Tools/SarvexTool/Bench/Commands/CommandFixture.h"

#include "Tools/SarvexTool/Bench/Files/Manifest.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace Bench {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class SplitTest : public CommandFixture {
protected:
    /// Splits a plan of that content; the exit code.
    int Split(const std::string& content, const std::string& lines = "2") {
        return Run(
            {"split", directory.Create("plan.csv", content), "--lines", lines, "-o", folder});
    }

    std::string ReadChunk(const std::string& name) const { return ReadBytes("split/" + name); }

    Manifest ReadTheManifest() const { return ReadManifest(directory.Path("split/manifest.json")); }

    std::string folder = directory.Path("split");
};

TEST_F(SplitTest, EachLineOfAChunkWritesAllSettingsOut) {
    EXPECT_EQ(Split("Band,Chains,Rate\n5,A,-\n-,B,1\n-,-,2\n\n6,-,-,x\n"), 0);
    EXPECT_EQ(ReadChunk("chunk-0001.csv"), "Band,Chains,Rate\n5,A,-\n5,B,1\n");
    EXPECT_EQ(ReadChunk("chunk-0002.csv"), "Band,Chains,Rate\n5,B,2\n5,B,2\n");
    EXPECT_EQ(ReadChunk("chunk-0003.csv"), "Band,Chains,Rate\n6,B,2\n");
    EXPECT_EQ(ReadChunk("plan.csv"), ReadBytes("plan.csv"));
}

TEST_F(SplitTest, TheManifestNamesThePlanAndTheLinesOfEachChunk) {
    const std::string plan = directory.Path("plan.csv");
    EXPECT_EQ(Split("Band\n5\n6\n5\n"), 0);
    const Manifest manifest = ReadTheManifest();
    EXPECT_EQ(manifest.programVersion, SARVEX_BENCH_VERSION);
    EXPECT_EQ(std::filesystem::path(manifest.plan.name), std::filesystem::path(plan));
    EXPECT_EQ(manifest.plan.sha256,
              "b6b5ee816f22e9dacd250098fd8e854a67365db13d7664075cbe65a48b074c6a");
    EXPECT_EQ(manifest.plan.lines, 3);
    ASSERT_EQ(manifest.chunks.size(), 2u);
    EXPECT_EQ(manifest.chunks[0].file, "chunk-0001.csv");
    EXPECT_EQ(manifest.chunks[0].lines, (LineRange{2, 3}));
    EXPECT_EQ(manifest.chunks[1].file, "chunk-0002.csv");
    EXPECT_EQ(manifest.chunks[1].lines, (LineRange{4, 4}));
}

TEST_F(SplitTest, WhatLinesRelyOnIsToldAndTheTimeOnSomeBenches) {
    EXPECT_EQ(Split("Band,Chains\n5,A\n-,B\n6,B\n"), 0);
    EXPECT_THAT(
        err.str(),
        AllOf(HasSubstr("plan.csv:2:0: warning: no line has set Rate when this one is run"),
              HasSubstr("plan.csv:2:0: warning: lines 2 to 4 leave out Bandwidth, Channel, "),
              HasSubstr("plan.csv:2:0: warning: line 3 takes Band from line 2; should the "
                        "daemon refuse line 2, ")));
    EXPECT_EQ(out.str(),
              folder + ": 2 chunks of 1 or 2 lines, each about 2 s; about 3 s on 1 bench\n");
}

TEST_F(SplitTest, OneChunkIsEnoughForAShortPlan) {
    EXPECT_EQ(Split("Band\n5\n", "1000000000"), 0);
    EXPECT_EQ(ReadTheManifest().chunks.size(), 1u);
}

TEST_F(SplitTest, APlanWithErrorsIsNotSplit) {
    EXPECT_EQ(Split("Band,Chains\n5,C\n"), 2);
    EXPECT_THAT(err.str(),
                AllOf(HasSubstr("plan.csv:2:2: error: no power is filed for the chains \"C\""),
                      EndsWith("Nothing was split: correct the file (SarvexToolBench check tells "
                               "what --write can do).\n")));
    EXPECT_EQ(Split("Band\n"), 2);
    EXPECT_THAT(err.str(), HasSubstr("there is no line after the header"));
    EXPECT_EQ(Split(""), 2);
    EXPECT_EQ(Split("Band,Chains\n{string:-remoteDaemon},A\n"), 2);
    EXPECT_THAT(err.str(), HasSubstr("plan.csv:2:0: error: a cell -remoteDaemon would lead"));
    EXPECT_EQ(out.str(), "");
    EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST_F(SplitTest, AFolderThatIsNotFreeStaysAsItIs) {
    EXPECT_EQ(Split("Band\n5\n6\n5\n"), 0);
    const std::string manifest = ReadChunk("manifest.json");
    EXPECT_EQ(Split("Band\n6\n"), 2);
    EXPECT_THAT(err.str(), HasSubstr("split: error: holds a plan in chunks already, or a part of "
                                     "one (chunk-0001.csv), which is never overwritten"));
    EXPECT_EQ(ReadChunk("manifest.json"), manifest);
    EXPECT_EQ(ReadChunk("chunk-0001.csv"), "Band\n5\n6\n");
}

TEST_F(SplitTest, WrongUsageIsToldAndNothingIsMade) {
    struct Case {
        std::vector<std::string> arguments;
        const char* complaint;
    };
    const std::string plan = directory.Create("plan.csv", "Band\n5\n");
    for (const Case& test : std::initializer_list<Case>{
             {{"split", plan, "-o", folder}, "--lines is required"},
             {{"split", plan, "--lines", "2"}, "--output is required"},
             {{"split", "--lines", "2", "-o", folder}, "PLAN is required"},
             {{"split", plan, "--lines", "0", "-o", folder},
              "--lines 0 is no number from 1 to 1000000000"},
             {{"split", plan, "--lines", "2", "-o", "-"}, "--output needs the name of a folder"},
             {{"split", plan, "--lines", "2", "-o", ""}, "--output needs the name of a folder"},
             {{"split", "-", "--lines", "2", "-o", folder}, "cannot come from standard input"},
             {{"split", directory.Path("none.csv"), "--lines", "2", "-o", folder},
              "none.csv: error: cannot be read"},
             {{"split", plan, "--lines", "2", "-o", plan}, "error: cannot be made a folder"}}) {
        SCOPED_TRACE(test.complaint);
        EXPECT_EQ(Run(test.arguments), 2);
        EXPECT_THAT(err.str(), HasSubstr(test.complaint));
        EXPECT_EQ(out.str(), "");
        EXPECT_FALSE(std::filesystem::exists(folder));
    }
    EXPECT_EQ(ReadBytes("plan.csv"), "Band\n5\n");
}

} // namespace
} // namespace Bench
