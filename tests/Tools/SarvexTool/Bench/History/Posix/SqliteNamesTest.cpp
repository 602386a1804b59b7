#include "tests/Tools/SarvexTool/Bench/History/HistoryFixture.h"

#include <filesystem>
#include <stdexcept>

namespace Bench {
namespace {

// Windows has no files of such names.
TEST(SqliteNamesTest, NamesThatTheDatabaseTakesForSomethingElseAreFiles) {
    const FileStores stores;
    for (const std::string name : {"file:history.db?mode=memory", ":memory:", "M\xFCller.db"}) {
        stores.Open(OpenFor::Writing, name)->Run("CREATE TABLE things(id BIGINT PRIMARY KEY)");
        EXPECT_TRUE(std::filesystem::exists(stores.Path(name))) << name;
        EXPECT_EQ(stores.Open(OpenFor::Reading, name)->Tables().size(), 1U) << name;
    }
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(std::filesystem::path(stores.Path()).parent_path());
    for (const OpenFor purpose : {OpenFor::Writing, OpenFor::Reading})
        EXPECT_NO_THROW(OpenDatabase(StoreName::Parse(":memory:"), purpose)->Tables());
    EXPECT_EQ(OpenDatabase(StoreName::Parse(":memory:"), OpenFor::Reading)->Tables().size(), 1U);
    std::filesystem::current_path(before);
}

TEST(SqliteNamesTest, AFileThatIsThereMayBeNamedAsIfItHadAPassword) {
    const TestSupport::TemporaryDirectory directory;
    const std::string name = directory.Path("eva:7@lab.db");
    EXPECT_THROW(StoreName::Parse(name), std::invalid_argument);
    directory.Create("eva:7@lab.db", "");
    EXPECT_EQ(StoreName::Parse(name).File(), name);
}

// In this one, nobody can make a file: not even who may write everywhere else.
TEST(SqliteNamesTest, AFolderThatTakesNoFileIsTold) {
    EXPECT_EQ(
        FailureOf([] { OpenDatabase(StoreName::Parse("/proc/history.db"), OpenFor::Writing); }),
        "/proc/history.db: cannot be made: its folder cannot be written");
}

} // namespace
} // namespace Bench
