#include "Tools/SarvexTool/Bench/Files/SplitDirectory.h"

#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <vector>

namespace Bench {
namespace {

namespace fs = std::filesystem;

class SplitDirectoryTest : public testing::Test {
protected:
    static Manifest OneChunk() {
        return {"1.2.3",
                {"/plan.csv", std::string(64, 'a'), 1},
                {{"chunk-0001.csv", std::string(64, '1'), {2, 2}}}};
    }

    void Split() const {
        SplitDirectory directory(m_folder, {});
        directory.Write(PlanCopyName, "plan");
        directory.Write("chunk-0001.csv", "chunk");
        directory.Finish(OneChunk());
    }

    /// What is wrong with the folder; "none" when it can be taken.
    std::string Refusal() const {
        try {
            const SplitDirectory directory(m_folder, {});
        } catch (const BadFile& bad) {
            EXPECT_EQ(bad.File(), m_folder);
            return bad.Problems().at(0).text;
        }
        return "none";
    }

    std::string Create(const std::string& name, const std::string& content = "old") const {
        fs::create_directories(m_folder);
        return m_directory.Create("split/" + name, content);
    }

    /// The names in the folder and what the files hold.
    std::string Contents() const {
        std::vector<std::string> files;
        for (const fs::directory_entry& entry : fs::directory_iterator(m_folder))
            files.push_back(entry.path().filename().string() + "=" +
                            TestSupport::ReadBytes(entry.path().string()));
        std::sort(files.begin(), files.end());
        std::string text;
        for (const std::string& file : files)
            text += (text.empty() ? "" : " ") + file;
        return text;
    }

    TestSupport::TemporaryDirectory m_directory;
    std::string m_folder = m_directory.Path("split");
};

TEST_F(SplitDirectoryTest, HoldsTheFilesAndNothingElse) {
    Split();
    EXPECT_EQ(Contents(),
              "chunk-0001.csv=chunk manifest.json=" + ToJsonText(OneChunk()) + " plan.csv=plan");
}

TEST_F(SplitDirectoryTest, TellsTheHashOfWhatWasWritten) {
    SplitDirectory directory(m_folder, {});
    EXPECT_EQ(directory.Write("chunk-0001.csv", "abc"),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(TestSupport::ReadBytes(m_folder + "/chunk-0001.csv"), "abc");
}

TEST_F(SplitDirectoryTest, OtherFilesOfTheFolderStay) {
    Create("benches");
    Create("chunk-1.csv");
    Split();
    EXPECT_EQ(Contents(), "benches=old chunk-0001.csv=chunk chunk-1.csv=old manifest.json=" +
                              ToJsonText(OneChunk()) + " plan.csv=plan");
}

TEST_F(SplitDirectoryTest, WhatIsThereIsNeverOverwritten) {
    for (const std::string name :
         {"manifest.json", "manifest.json.part", "plan.csv", "chunk-0001.csv", "chunk-12345.csv"}) {
        const std::string file = Create(name);
        EXPECT_EQ(Refusal(), "holds a plan in chunks already, or a part of one (" + name +
                                 "), which is never overwritten; name another folder");
        EXPECT_EQ(Contents(), name + "=old");
        fs::remove(file);
    }
    EXPECT_EQ(Refusal(), "none");
}

TEST_F(SplitDirectoryTest, AFileOfThatNameIsNoFolder) {
    m_directory.Create("split", "");
    EXPECT_EQ(Refusal().find("cannot be made a folder"), 0u) << Refusal();
}

TEST_F(SplitDirectoryTest, WhatIsNotFinishedIsTakenBack) {
    for (const bool wasThere : {false, true}) {
        SCOPED_TRACE(wasThere);
        if (wasThere)
            Create("benches");
        {
            SplitDirectory directory(m_folder, {});
            directory.Write(PlanCopyName, "plan");
            directory.Write("chunk-0001.csv", "chunk");
            EXPECT_THROW(directory.Write("chunk-0001.csv", "other"), std::system_error);
        }
        EXPECT_EQ(fs::exists(m_folder), wasThere);
    }
    EXPECT_EQ(Contents(), "benches=old");
}

TEST_F(SplitDirectoryTest, WhatACrashHasLeftIsRemoved) {
    for (const char* name :
         {"split.lock", "manifest.json.part", "plan.csv", "chunk-0001.csv", "chunk-0002.csv"})
        Create(name);
    Split();
    EXPECT_EQ(Contents(),
              "chunk-0001.csv=chunk manifest.json=" + ToJsonText(OneChunk()) + " plan.csv=plan");
}

TEST_F(SplitDirectoryTest, AfterACrashThatCameTooLateThePlanIsWhole) {
    Split();
    const std::string before = Contents();
    Create("split.lock");
    EXPECT_NE(Refusal(), "none");
    EXPECT_EQ(Contents(), before);
}

TEST_F(SplitDirectoryTest, TwoCannotUseItAtATime) {
    std::optional<SplitDirectory> first;
    first.emplace(m_folder, LockHolder{4711, "", "2026-03-09T08:05:00.007Z"});
    first->Write("chunk-0001.csv", "chunk");
    EXPECT_EQ(Refusal(), "the folder is in use by process 4711, since 2026-03-09T08:05:00.007Z");
    EXPECT_EQ(TestSupport::ReadBytes(m_folder + "/chunk-0001.csv"), "chunk");
    first.reset();
    EXPECT_EQ(Refusal(), "none");
}

TEST_F(SplitDirectoryTest, ARequestToEndWaitsUntilAllIsTakenBack) {
    OSAL::Fake::World& world = OSAL::Fake::TheWorld();
    {
        SplitDirectory directory(m_folder, {});
        EXPECT_EQ(world.heldInterruptions, 1);
        directory.Write("chunk-0001.csv", "chunk");
        world.isEndWanted = true;
        EXPECT_THROW(directory.Write("chunk-0002.csv", "chunk"), BadOutput);
        EXPECT_THROW(directory.Finish(OneChunk()), BadOutput);
        world.isEndWanted = false;
    }
    EXPECT_EQ(world.heldInterruptions, 0);
    EXPECT_FALSE(fs::exists(m_folder));
}

} // namespace
} // namespace Bench
