#include "Modules/xFramework/Utilities/ModuleDirectory.h"

#include "tests/Modules/xFramework/OSAL/Fake/World.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Utilities {
namespace {

using OSAL::Fake::TheWorld;

class ModuleDirectory : public testing::Test {
protected:
    ModuleDirectory() { OSAL::Fake::Reset(); }
    std::string directory = "as it was";
};

struct PathCase {
    std::string modulePath;
    std::string directory;
};

TEST_F(ModuleDirectory, ReachesUpToTheLastSeparator) {
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

TEST_F(ModuleDirectory, SucceedsWithoutSeparatorAndLeavesTheTextAlone) {
    TheWorld().modulePath = "client";
    EXPECT_EQ(GetModuleDirectory(directory), 0);
    EXPECT_EQ(directory, "as it was");
    EXPECT_EQ(PathBesideProgram("Socket.cfg"), "Socket.cfg");
}

TEST_F(ModuleDirectory, FailsWith13WhenThePathCannotBeRead) {
    TheWorld().modulePathReadable = false;
    EXPECT_EQ(GetModuleDirectory(directory), 13);
    EXPECT_EQ(directory, "as it was");
    EXPECT_EQ(PathBesideProgram("Socket.cfg"), "Socket.cfg");
}

} // namespace
} // namespace Utilities
