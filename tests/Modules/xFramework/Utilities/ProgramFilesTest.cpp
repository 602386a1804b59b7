#include "Modules/xFramework/Utilities/ProgramFiles.h"

#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Modules/xFramework/Utilities/ProviderGuard.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Utilities {
namespace {

using OSAL::Fake::TheWorld;

class ProgramFilesDirectoryTest : public testing::Test {
protected:
    ProgramFilesDirectoryTest() { OSAL::Fake::Reset(); }
    std::string directory = "as it was";
};

struct PathCase {
    std::string modulePath;
    std::string directory;
};

TEST_F(ProgramFilesDirectoryTest, ReachesUpToTheLastSeparator) {
    for (const PathCase& each : std::vector<PathCase>{{"/bench/SarvexToolClient", "/bench/"},
                                                      {"/a/b.c/d/client", "/a/b.c/d/"},
                                                      {"/client", "/"},
                                                      {"/a b/client tool", "/a b/"},
                                                      {"a//client", "a//"}}) {
        SCOPED_TRACE(each.modulePath);
        TheWorld().modulePath = each.modulePath;
        EXPECT_EQ(GetModuleDirectory(directory), 0);
        EXPECT_EQ(directory, each.directory);
        EXPECT_EQ(PathBesideProgram("Socket.cfg"), each.directory + "Socket.cfg");
    }
}

TEST_F(ProgramFilesDirectoryTest, SucceedsWithoutSeparatorAndLeavesTheTextAlone) {
    TheWorld().modulePath = "client";
    EXPECT_EQ(GetModuleDirectory(directory), 0);
    EXPECT_EQ(directory, "as it was");
    EXPECT_EQ(PathBesideProgram("Socket.cfg"), "Socket.cfg");
}

TEST_F(ProgramFilesDirectoryTest, FailsWith13WhenThePathCannotBeRead) {
    TheWorld().modulePathReadable = false;
    EXPECT_EQ(GetModuleDirectory(directory), 13);
    EXPECT_EQ(directory, "as it was");
    EXPECT_EQ(PathBesideProgram("Socket.cfg"), "Socket.cfg");
}

constexpr OSAL::PathKind archived{.isToBeArchived = true};
constexpr OSAL::PathKind archivedSymbolicLink{.isSymbolicLink = true, .isToBeArchived = true};
constexpr OSAL::PathKind archivedDirectory{.isDirectory = true, .isToBeArchived = true};

struct LinkCase {
    const char* what;
    OSAL::PathKind kind;
    std::uint32_t hardLinks;
    bool isLink;
};

const std::vector<LinkCase> cases{
    {"plain file", archived, 1, false},
    {"file that cannot be opened", archived, 0, false},
    {"two names", archived, 2, true},
    {"many names", archived, 9, true},
    {"symbolic link", archivedSymbolicLink, 1, true},
    {"symbolic link that leads nowhere", archivedSymbolicLink, 0, true},
    {"directory with the archive attribute and two names", archivedDirectory, 2, true},
    // Without the archive attribute nothing counts.
    {"two names, not archived", {}, 2, false},
    {"symbolic link, not archived", {.isSymbolicLink = true}, 2, false},
    {"directory", {.isDirectory = true}, 9, false}};

TEST(ProgramFilesLinkTest, IsASymbolicLinkOrASecondNameOfAnArchivedFile) {
    OSAL::Fake::Reset();
    for (const LinkCase& each : cases) {
        SCOPED_TRACE(each.what);
        TheWorld().files["/bench/Socket.cfg"] = {"8738", each.kind, each.hardLinks};
        EXPECT_EQ(IsLink("/bench/Socket.cfg"), each.isLink);
    }
}

TEST(ProgramFilesLinkTest, IsNoMissingFile) {
    OSAL::Fake::Reset();
    EXPECT_FALSE(IsLink("/bench/Socket.cfg"));
}

void Mark(std::string& text) {
    text += "!";
}

TEST(ProgramFilesLinkTest, MessageNamesThePath) {
    EXPECT_EQ(LinkMessage("/bench/Socket.cfg"), "File /bench/Socket.cfg is a link");
}

TEST(ProgramFilesLinkTest, MessageExpandsThePathLikeAnyText) {
    const ProviderGuard guard(&Mark);
    EXPECT_EQ(LinkMessage("/x"), "File /x! is a link!");
}

TEST(ProgramFilesLinkTest, MessageNamesAPathThatLooksLikeAPlaceholder) {
    EXPECT_EQ(LinkMessage("/${1}/Socket.cfg"), "File /${1}/Socket.cfg is a link");
}

} // namespace
} // namespace Utilities
