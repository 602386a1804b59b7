#include "Tools/SarvexTool/Bench/Files/OutputFile.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Support/Files.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <sstream>

namespace Bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::ReadBytes;

class OutputFileTest : public testing::Test {
protected:
    OutputFileTest() { OSAL::Fake::Reset(); }

    std::vector<std::string> Files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(directory.Path()))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }

    /// The problem that writing the file ends with.
    std::string ProblemOf(const std::string& name) {
        try {
            WriteOutput(name, standardOutput, "text");
        } catch (const BadOutput& bad) {
            EXPECT_EQ(bad.File(), name);
            return bad.Problems().at(0).text;
        }
        return "none";
    }

    TestSupport::TemporaryDirectory directory;
    std::ostringstream standardOutput;
};

TEST_F(OutputFileTest, TheBytesAreWrittenAsTheyAre) {
    WriteOutput(directory.Path("out.csv"), standardOutput, "a\nb\r\n");
    EXPECT_EQ(ReadBytes(directory.Path("out.csv")), "a\nb\r\n");
    EXPECT_THAT(Files(), ElementsAre("out.csv"));
    EXPECT_EQ(standardOutput.str(), "");
}

TEST_F(OutputFileTest, TheOldFileStaysUntilTheNewOneIsWhole) {
    const std::string target = directory.Create("out.csv", "old");
    OutputFile file(target, standardOutput);
    file.Stream() << "new" << std::flush;
    EXPECT_EQ(ReadBytes(target), "old");
    file.Finish();
    EXPECT_EQ(ReadBytes(target), "old");
    file.Commit();
    EXPECT_EQ(ReadBytes(target), "new");
    EXPECT_THAT(Files(), ElementsAre("out.csv"));
}

TEST_F(OutputFileTest, WhatIsNotCommittedLeavesNothing) {
    const std::string target = directory.Create("out.csv", "old");
    { OutputFile(target, standardOutput).Stream() << "new"; }
    { OutputFile(directory.Path("other.csv"), standardOutput).Stream() << "new"; }
    EXPECT_EQ(ReadBytes(target), "old");
    EXPECT_THAT(Files(), ElementsAre("out.csv"));
}

TEST_F(OutputFileTest, WhatCannotBeWrittenToItsEndLeavesTheOldFile) {
    const std::string target = directory.Create("out.csv", "old");
    {
        OutputFile file(target, standardOutput);
        file.Stream() << "new";
        file.Stream().setstate(std::ios::badbit);
        EXPECT_THROW(file.Finish(), BadOutput);
    }
    EXPECT_EQ(ReadBytes(target), "old");
    EXPECT_THAT(Files(), ElementsAre("out.csv"));
}

TEST_F(OutputFileTest, ARequestToEndInTheMiddleWaitsUntilNothingHalfWrittenIsLeft) {
    const std::string target = directory.Create("out.csv", "old");
    {
        OutputFile file(target, standardOutput);
        EXPECT_EQ(OSAL::Fake::TheWorld().heldInterruptions, 1);
        file.Stream() << std::string(100'000, 'a');
        OSAL::Fake::TheWorld().isEndWanted = true;
        file.Stream() << std::string(100'000, 'b');
        EXPECT_THROW(file.Finish(), BadOutput);
    }
    EXPECT_EQ(OSAL::Fake::TheWorld().heldInterruptions, 0);
    EXPECT_EQ(ReadBytes(target), "old");
    EXPECT_THAT(Files(), ElementsAre("out.csv"));
}

TEST_F(OutputFileTest, ARequestToEndDoesNotWaitForStandardOutput) {
    const OutputFile file("-", standardOutput);
    EXPECT_EQ(OSAL::Fake::TheWorld().heldInterruptions, 0);
}

TEST_F(OutputFileTest, ADashIsStandardOutput) {
    WriteOutput("-", standardOutput, "text");
    EXPECT_EQ(standardOutput.str(), "text");
    standardOutput.setstate(std::ios::badbit);
    EXPECT_EQ(ProblemOf("-").substr(0, 30), "cannot be written to its end");
}

TEST_F(OutputFileTest, AFolderThatIsNotThereIsTold) {
    EXPECT_EQ(ProblemOf(directory.Path("none/out.csv")),
              "cannot be written (No such file or directory)");
    EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(OutputFileTest, AFolderIsNotReplaced) {
    EXPECT_EQ(ProblemOf(directory.Path()), "cannot be written (Is a directory)");
}

TEST_F(OutputFileTest, ANameMayHoldAnyCharacter) {
    WriteOutput(directory.Path() + "/Ω 測試.csv", standardOutput, "text");
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(directory.Path()) /
                                        std::filesystem::path(u8"Ω 測試.csv")));
}

} // namespace
} // namespace Bench
