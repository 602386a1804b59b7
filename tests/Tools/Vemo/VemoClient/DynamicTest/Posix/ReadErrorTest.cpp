#include "tests/Tools/Vemo/VemoClient/DynamicTest/DynamicTestFixture.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>

namespace {

/// Puts a directory in the place of every descriptor that is open on the file, so that the next
/// read of it fails, as it does when a network drive goes away.
void BreakReadsOf(const std::filesystem::path& file) {
    const int broken = ::open("/", O_RDONLY | O_CLOEXEC);
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        if (std::filesystem::read_symlink(entry.path(), error) == file)
            ::dup2(broken, std::stoi(entry.path().filename().string()));
    }
    ::close(broken);
}

using ReadErrorTest = DynamicTestFixture;

TEST_F(ReadErrorTest, TestFileThatCannotBeReadToItsEndIsReportedAndItsRowsAreKept) {
    // More lines than the stream reads ahead at a time.
    constexpr int lines = 5'000;
    std::string content = "Band\n";
    for (int line = 0; line < lines; ++line)
        content += "5\n";
    const std::filesystem::path file = std::filesystem::current_path() / "test.csv";
    OSAL::Fake::TheWorld().connectSucceeds = [&file](int) {
        BreakReadsOf(file);
        return true;
    };
    EXPECT_EQ(Run(content), 1);
    EXPECT_EQ(console.Err(), "Failed to read test file 'test.csv' to its end.");
    const std::string header = "Band,Chain-A Power, Chain B Power\n";
    const std::string csv = ReadFile("result.csv");
    ASSERT_EQ(csv.substr(0, header.size()), header);
    std::string rows = csv.substr(header.size());
    EXPECT_GT(rows.size(), 0U);
    EXPECT_LT(rows.size(), lines * std::string("5,NA,NA\n").size());
    for (; rows.starts_with("5,NA,NA\n"); rows.erase(0, 8)) {
    }
    EXPECT_EQ(rows, "");
}

} // namespace
