#include "Tools/SarvexTool/Bench/Files/Locks.h"

#include <unistd.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>

namespace Bench {
namespace {

TEST(PosixLocksTest, AFolderThatIsOpenToOthersIsRefusedWithARemedy) {
    const std::string name = "SarvexToolBench-test-" + std::to_string(std::random_device()());
    const std::string folder = LockFolder(name);
    EXPECT_EQ(folder, "/tmp/" + name + "-" + std::to_string(::geteuid()));
    std::filesystem::permissions(folder, std::filesystem::perms::others_read,
                                 std::filesystem::perm_options::add);
    try {
        LockFolder(name);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), "cannot keep from others " + folder +
                                    ": Permission denied; it belongs to another user or is open "
                                    "to others: have it removed, or the run's locks would be "
                                    "theirs");
    }
    std::filesystem::remove(folder);
}

} // namespace
} // namespace Bench
