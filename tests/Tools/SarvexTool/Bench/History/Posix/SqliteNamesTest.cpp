#include "tests/Tools/SarvexTool/Bench/History/HistoryFixture.h"

#include <unistd.h>

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

/// A user who may write only where everybody may, while it lives; root may write everywhere.
class UserWithoutRights {
public:
    UserWithoutRights() { Become(::geteuid() == 0 ? nobody : ::geteuid()); }
    ~UserWithoutRights() { Become(m_before); }
    UserWithoutRights(const UserWithoutRights&) = delete;
    UserWithoutRights& operator=(const UserWithoutRights&) = delete;

private:
    static constexpr uid_t nobody = 65534;

    static void Become(uid_t user) { EXPECT_EQ(::seteuid(user), 0); }

    uid_t m_before = ::geteuid();
};

TEST(SqliteNamesTest, AStoreThatNeedsFilesBesideItIsNotReadWhereNoneCanBeMade) {
    const FileStores stores;
    stores.Open(OpenFor::Writing)->Query("PRAGMA journal_mode=WAL", [](const ResultRow&) {});
    stores.Open(OpenFor::Writing)->Run("CREATE TABLE things(id BIGINT PRIMARY KEY)");
    const std::filesystem::path folder = std::filesystem::path(stores.Path()).parent_path();
    using std::filesystem::perms;
    const perms readable = perms::owner_read | perms::owner_exec | perms::group_read |
                           perms::group_exec | perms::others_read | perms::others_exec;
    std::filesystem::permissions(folder, readable);
    {
        const UserWithoutRights user;
        EXPECT_EQ(FailureOf([&] { stores.Open(OpenFor::Reading); }),
                  stores.Path() +
                      ": cannot be read: it is in WAL mode or was left in the middle of a change, "
                      "so that reading it writes beside it, and its file or folder is read-only; "
                      "read it as a user who may write there");
    }
    std::filesystem::permissions(folder, perms::owner_all);
}

// In this one, nobody can make a file: not even who may write everywhere else.
TEST(SqliteNamesTest, AFolderThatTakesNoFileIsTold) {
    EXPECT_EQ(
        FailureOf([] { OpenDatabase(StoreName::Parse("/proc/history.db"), OpenFor::Writing); }),
        "/proc/history.db: cannot be made: its folder cannot be written");
}

} // namespace
} // namespace Bench
