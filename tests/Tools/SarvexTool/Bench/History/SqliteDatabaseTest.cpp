#include "Tools/SarvexTool/Bench/History/SqliteDatabase.h"

#include "tests/Tools/SarvexTool/Bench/History/HistoryFixture.h"
#include "tests/Tools/SarvexTool/Bench/History/StoreFixture.h"

#include <filesystem>

namespace Bench {
namespace {

class SqliteDatabaseTest : public testing::Test {
protected:
    /// What opening a store fails with, without the store's name.
    std::string Refusal(OpenFor purpose, const std::string& name = "history.db") const {
        const std::string failure = FailureOf([&] { m_stores.Open(purpose, name); });
        const std::string begin = m_stores.Path(name) + ": ";
        return failure.starts_with(begin) ? failure.substr(begin.size()) : failure;
    }

    void Create(const std::string& name, const std::string& content) const {
        TestSupport::WriteBytes(m_stores.Path(name), content);
    }

    void MakeThings() const {
        m_stores.Open(OpenFor::Writing)->Run("CREATE TABLE things(id BIGINT PRIMARY KEY)");
    }

    FileStores m_stores;
};

TEST_F(SqliteDatabaseTest, AStoreToReadMustBeThere) {
    EXPECT_THROW(m_stores.Open(OpenFor::Reading), StoreMissing);
    EXPECT_EQ(Refusal(OpenFor::Reading), "there is no such file");
    EXPECT_FALSE(std::filesystem::exists(m_stores.Path()));
}

TEST_F(SqliteDatabaseTest, WhatIsNoStoreIsRefusedAndStaysAsItIs) {
    const std::string text(2000, 'x');
    Create("result.csv", text);
    for (const OpenFor purpose : {OpenFor::Reading, OpenFor::Writing})
        EXPECT_EQ(Refusal(purpose, "result.csv"),
                  "is no store: the file is not an SQLite database");
    EXPECT_EQ(TestSupport::ReadBytes(m_stores.Path("result.csv")), text);
}

TEST_F(SqliteDatabaseTest, AFolderIsRefused) {
    std::filesystem::create_directory(m_stores.Path("runs"));
    EXPECT_EQ(Refusal(OpenFor::Writing, "runs"), "is a folder, not a file");
    EXPECT_EQ(Refusal(OpenFor::Reading, "runs"), "is a folder, not a file");
}

TEST_F(SqliteDatabaseTest, ADamagedStoreIsRefused) {
    MakeThings();
    std::string bytes = TestSupport::ReadBytes(m_stores.Path());
    // The first page's tree begins after the header of 100 bytes.
    bytes.replace(100, 50, std::string(50, '\xFF'));
    Create("history.db", bytes);
    EXPECT_EQ(Refusal(OpenFor::Reading), "is damaged: restore it from a copy");
}

TEST_F(SqliteDatabaseTest, AnEmptyFileIsAStoreWithoutTables) {
    Create("history.db", "");
    EXPECT_TRUE(m_stores.Open(OpenFor::Reading)->Tables().empty());
}

TEST_F(SqliteDatabaseTest, AFolderIsOnlyMadeForTheUsersOwnStore) {
    const std::string refusal = Refusal(OpenFor::Writing, "no/folder/history.db");
    EXPECT_TRUE(refusal.starts_with("cannot be opened")) << refusal;
    EXPECT_FALSE(std::filesystem::exists(m_stores.Path("no")));
    const std::string folder = m_stores.Path("data");
    const StoreName own = StoreName::Default([&](const std::string& name) {
        return name == "HOME" ? std::optional(folder) : std::nullopt;
    });
    EXPECT_THROW(OpenDatabase(own, OpenFor::Reading), StoreMissing);
    EXPECT_FALSE(std::filesystem::exists(folder));
    OpenDatabase(own, OpenFor::Writing)->Run("CREATE TABLE things(id BIGINT PRIMARY KEY)");
    EXPECT_EQ(OpenDatabase(own, OpenFor::Reading)->Tables().size(), 1U);
}

TEST_F(SqliteDatabaseTest, ASecondWriterIsToldThatTheStoreIsInUse) {
    MakeThings();
    const std::unique_ptr<Database> first = m_stores.Open(OpenFor::Writing);
    const Transaction transaction(*first, OpenFor::Writing);
    const std::unique_ptr<Database> second = m_stores.Open(OpenFor::Writing);
    EXPECT_EQ(FailureOf([&] { second->BeginWrite(); }),
              m_stores.Path() + ": was not free within 0 seconds: another program writes it, or it "
                                "is on a share without locks");
}

TEST_F(SqliteDatabaseTest, AStoreThatOthersHaveIsWaitedFor) {
    MakeThings();
    const std::unique_ptr<Database> first = m_stores.Open(OpenFor::Writing);
    const auto begin = std::chrono::steady_clock::now();
    const Transaction transaction(*first, OpenFor::Writing);
    constexpr std::chrono::milliseconds patience{300};
    const std::unique_ptr<Database> second =
        m_stores.Open(OpenFor::Writing, "history.db", patience);
    EXPECT_NE(FailureOf([&] { second->BeginWrite(); }), "nothing");
    EXPECT_GE(std::chrono::steady_clock::now() - begin, patience);
}

TEST_F(SqliteDatabaseTest, RowsMustBelongToWhatTheyName) {
    MakeThings();
    const std::unique_ptr<Database> store = m_stores.Open(OpenFor::Writing);
    store->Run("CREATE TABLE parts(thing BIGINT REFERENCES things(id) ON DELETE CASCADE)");
    EXPECT_NE(FailureOf([&] { store->Run("INSERT INTO parts VALUES (7)"); }), "nothing");
    store->Run("INSERT INTO things VALUES (7)");
    store->Run("INSERT INTO parts VALUES (7)");
    store->Run("DELETE FROM things WHERE id = 7");
    EXPECT_EQ(RowsOf(*store, "SELECT COUNT(*) FROM parts", 1), "0\n");
}

TEST_F(SqliteDatabaseTest, ARowThatBelongsToNothingIsAProblemOfIntegrity) {
    MakeThings();
    const std::unique_ptr<Database> store = m_stores.Open(OpenFor::Writing);
    store->Run("CREATE TABLE parts(thing BIGINT REFERENCES things(id))");
    store->Run("PRAGMA foreign_keys=OFF");
    store->Run("INSERT INTO parts VALUES (7)");
    EXPECT_EQ(store->IntegrityProblems(),
              (std::vector<std::string>{"a row of parts belongs to none of things"}));
}

TEST_F(SqliteDatabaseTest, NoWordInDoubleQuotesIsAText) {
    MakeThings();
    const std::unique_ptr<Database> store = m_stores.Open(OpenFor::Reading);
    EXPECT_NE(FailureOf([&] { RowsOf(*store, "SELECT \"text\"", 1); }), "nothing");
    EXPECT_NE(FailureOf([&] { store->Run("ATTACH 'other.db' AS other"); }), "nothing");
}

std::unique_ptr<Stores> MakeFileStores() {
    return std::make_unique<FileStores>();
}

INSTANTIATE_TEST_SUITE_P(File, DatabaseTest, testing::Values(&MakeFileStores));
INSTANTIATE_TEST_SUITE_P(File, MigrationsTest, testing::Values(&MakeFileStores));
INSTANTIATE_TEST_SUITE_P(File, StoreTest, testing::Values(&MakeFileStores));

} // namespace
} // namespace Bench
