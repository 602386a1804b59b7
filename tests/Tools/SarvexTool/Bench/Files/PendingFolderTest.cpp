#include "Tools/SarvexTool/Bench/Files/PendingFolder.h"

#include "tests/Support/Files.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace Bench {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class PendingFolderTest : public testing::Test {
protected:
    /// What is said when the folder cannot be made.
    template <typename Exception>
    std::string Problem() const {
        try {
            const PendingFolder folder(place, {7, "here", "now"});
        } catch (const Exception& error) {
            return error.what();
        }
        return "none";
    }

    TestSupport::TemporaryDirectory directory;
    const std::string place = directory.Path("whole");
    const std::string beside = place + ".part";
};

TEST_F(PendingFolderTest, TakesItsPlaceWhenItIsWhole) {
    PendingFolder folder(place, {});
    TestSupport::WriteBytes(folder.Files().result, "rows");
    EXPECT_FALSE(fs::exists(place));
    folder.Commit();
    EXPECT_EQ(TestSupport::ReadBytes(place + "/result.csv"), "rows");
}

TEST_F(PendingFolderTest, LeavesNothingBeside) {
    for (const bool isCommitted : {false, true}) {
        {
            PendingFolder folder(place + "/", {});
            TestSupport::WriteBytes(folder.Files().facts, "facts");
            TestSupport::WriteBytes(folder.Files().tree + ".part", "tree");
            if (isCommitted)
                folder.Commit();
        }
        EXPECT_FALSE(fs::exists(beside));
        EXPECT_EQ(fs::exists(place), isCommitted);
    }
}

TEST_F(PendingFolderTest, TakesThePlaceOfAnEmptyFolderOnly) {
    fs::create_directory(place);
    { PendingFolder(place, {}).Commit(); }
    EXPECT_EQ(Problem<BadOutput>(), "none") << "nothing was put into it";
    directory.Create("whole/notes.txt", "mine");
    EXPECT_EQ(Problem<BadOutput>(),
              place + ": is there already and is no empty folder, and old results are never "
                      "overwritten; name another folder");
    fs::remove_all(place);
    directory.Create("whole", "mine");
    EXPECT_THAT(Problem<BadOutput>(), HasSubstr("is there already"));
    EXPECT_EQ(TestSupport::ReadBytes(place), "mine");
}

TEST_F(PendingFolderTest, DoesNotTakeThePlaceOfWhatHasComeInBetween) {
    {
        PendingFolder folder(place, {});
        fs::create_directory(place);
        directory.Create("whole/notes.txt", "mine");
        EXPECT_THROW(folder.Commit(), BadOutput);
    }
    EXPECT_EQ(TestSupport::ReadBytes(place + "/notes.txt"), "mine");
    EXPECT_FALSE(fs::exists(beside));
}

TEST_F(PendingFolderTest, WhatAKilledOneHasLeftIsTakenAway) {
    fs::create_directories(beside + "/run");
    TestSupport::WriteBytes(beside + "/run.lock", "process 7");
    TestSupport::WriteBytes(beside + "/run/result.csv", "half");
    TestSupport::WriteBytes(beside + "/run/run.json.part", "half");
    { PendingFolder(place, {}).Commit(); }
    EXPECT_TRUE(fs::is_empty(place));
    EXPECT_FALSE(fs::exists(beside));
}

TEST_F(PendingFolderTest, WhatSomebodyElseHasPutThereStays) {
    fs::create_directories(beside + "/run");
    TestSupport::WriteBytes(beside + "/run/notes.txt", "mine");
    EXPECT_EQ(Problem<BadOutput>(),
              beside + "/run: cannot be made; look what is there, and remove it");
    EXPECT_EQ(TestSupport::ReadBytes(beside + "/run/notes.txt"), "mine");
}

TEST_F(PendingFolderTest, OnlyOneIsMadeForAPlace) {
    const PendingFolder first(place, {7, "here", "now"});
    EXPECT_THAT(Problem<InUse>(), HasSubstr("the folder is in use by process 7, since now"));
    EXPECT_TRUE(fs::exists(first.Files().directory));
}

} // namespace
} // namespace Bench
