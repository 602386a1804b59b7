#include "Modules/xFramework/Utilities/ProgramFiles.h"

#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Modules/xFramework/Utilities/ProviderGuard.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Utilities {
namespace {

using OSAL::Fake::TheWorld;

class ProgramFilesDirectory : public testing::Test {
protected:
    ProgramFilesDirectory() { OSAL::Fake::Reset(); }
    std::string directory = "as it was";
};

struct PathCase {
    std::string modulePath;
    std::string directory;
};

TEST_F(ProgramFilesDirectory, ReachesUpToTheLastSeparator) {
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

TEST_F(ProgramFilesDirectory, SucceedsWithoutSeparatorAndLeavesTheTextAlone) {
    TheWorld().modulePath = "client";
    EXPECT_EQ(GetModuleDirectory(directory), 0);
    EXPECT_EQ(directory, "as it was");
    EXPECT_EQ(PathBesideProgram("Socket.cfg"), "Socket.cfg");
}

TEST_F(ProgramFilesDirectory, FailsWith13WhenThePathCannotBeRead) {
    TheWorld().modulePathReadable = false;
    EXPECT_EQ(GetModuleDirectory(directory), 13);
    EXPECT_EQ(directory, "as it was");
    EXPECT_EQ(PathBesideProgram("Socket.cfg"), "Socket.cfg");
}

constexpr std::uint32_t archive = 0x20;
constexpr std::uint32_t reparse = 0x400;
constexpr std::uint32_t symbolicLink = 0xA000000C;
constexpr std::uint32_t mountPoint = 0xA0000003;
constexpr std::uint32_t readOnly = 0x1;
constexpr std::uint32_t unreadable = 0xFFFFFFFF;

struct LinkCase {
    const char* what;
    std::uint32_t attributes;
    std::uint32_t reparseTag;
    std::uint32_t hardLinks;
    bool isLink;
};

const std::vector<LinkCase> cases{
    {"plain file", archive, 0, 1, false},
    {"plain file with further attributes", archive | readOnly, 0, 1, false},
    {"file that cannot be opened", archive, 0, 0, false},
    {"two names", archive, 0, 2, true},
    {"many names", archive | readOnly, 0, 9, true},
    {"symbolic link", archive | reparse, symbolicLink, 1, true},
    {"symbolic link that leads nowhere", archive | reparse, symbolicLink, 0, true},
    {"other reparse point", archive | reparse, mountPoint, 1, false},
    {"other reparse point with two names", archive | reparse, mountPoint, 2, true},
    {"the tag without the attribute", archive, symbolicLink, 1, false},
    // Without the archive attribute nothing counts.
    {"two names, not archived", readOnly, 0, 2, false},
    {"symbolic link, not archived", reparse, symbolicLink, 2, false},
    // All bits are set in this value, and yet there is nothing to look at.
    {"unreadable attributes", unreadable, symbolicLink, 2, false}};

TEST(ProgramFilesLink, IsASymbolicLinkOrASecondNameOfAnArchivedFile) {
    OSAL::Fake::Reset();
    for (const LinkCase& each : cases) {
        SCOPED_TRACE(each.what);
        TheWorld().files["/bench/Socket.cfg"] = {"8738", each.attributes, each.reparseTag,
                                                 each.hardLinks};
        EXPECT_EQ(IsLink("/bench/Socket.cfg"), each.isLink);
    }
}

TEST(ProgramFilesLink, IsNoMissingFile) {
    OSAL::Fake::Reset();
    EXPECT_FALSE(IsLink("/bench/Socket.cfg"));
}

void Mark(std::string& text) {
    text += "!";
}

TEST(ProgramFilesLink, MessageNamesThePath) {
    EXPECT_EQ(LinkMessage("/bench/Socket.cfg"), "File /bench/Socket.cfg is a link");
}

TEST(ProgramFilesLink, MessageExpandsThePathLikeAnyText) {
    const ProviderGuard guard(&Mark);
    EXPECT_EQ(LinkMessage("/x"), "File /x! is a link!");
}

TEST(ProgramFilesLink, MessageNamesAPathThatLooksLikeAPlaceholder) {
    EXPECT_EQ(LinkMessage("/${1}/Socket.cfg"), "File /${1}/Socket.cfg is a link");
}

} // namespace
} // namespace Utilities
