#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Tools/SarvexTool/Bench/Commands/CommandFixture.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <map>

namespace Bench {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// Where the store is, with an environment that names only a folder for data.
class HistoryPlaceTest : public CommandFixture {
protected:
    HistoryPlaceTest() {
        OSAL::Fake::Reset();
        Environment()["XDG_DATA_HOME"] = directory.Path("data");
    }
    ~HistoryPlaceTest() override { OSAL::Fake::Reset(); }

    static std::map<std::string, std::string>& Environment() {
        return OSAL::Fake::TheWorld().environment;
    }

    std::string store = directory.Path("history.db");
};

TEST_F(HistoryPlaceTest, LinkToTheStoreIsTheStore) {
    ASSERT_EQ(Run({"history", "add", ResultOf("result.csv", "10.5"), "--store", store}), 0);
    const std::string link = directory.Path("link");
    fs::create_symlink("history.db", link);
    const std::string before = ReadBytes("history.db");
    EXPECT_EQ(Run({"history", "list", "--store", store, "--json", link}), 2);
    EXPECT_EQ(Run({"history", "list", "--store", link, "--json", store}), 2);
    EXPECT_EQ(Run({"history", "list", "--store", link, "--json", store + "-journal"}), 2);
    EXPECT_THAT(err.str(), HasSubstr("history.db-journal would replace the input"));
    EXPECT_EQ(ReadBytes("history.db"), before);
    EXPECT_FALSE(fs::exists(store + "-journal"));
}

TEST_F(HistoryPlaceTest, NoOutputReplacesTheStoreOfTheEnvironment) {
    for (const std::string& named : {store, std::string()}) {
        SCOPED_TRACE(named);
        Environment()["SARVEXTOOL_STORE"] = named;
        ASSERT_EQ(Run({"history", "add", ResultOf("result.csv", "10.5")}), 0) << err.str();
        const std::string file =
            named.empty() ? directory.Path("data/sarvextool/history.db") : named;
        const std::string before = TestSupport::ReadBytes(file);
        ASSERT_NE(before, "");
        EXPECT_EQ(Run({"history", "trend", "--html", file}), 2);
        EXPECT_THAT(err.str(), HasSubstr("would replace the input " + file));
        EXPECT_EQ(TestSupport::ReadBytes(file), before);
    }
}

TEST_F(HistoryPlaceTest, OnlyInTheUsersOwnPlaceAMissingStoreIsAnEmptyOne) {
    EXPECT_EQ(Run({"history", "list"}), 0);
    EXPECT_EQ(out.str(), "No run is kept yet.\n");
    Environment()["SARVEXTOOL_STORE"] = store;
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"history", "list", "--json", "-"}, {"history", "list", "--store", store}}) {
        EXPECT_EQ(Run(arguments), 2);
        EXPECT_EQ(out.str(), "");
        EXPECT_EQ(err.str(), store + ": error: there is no such file\n");
    }
}

TEST_F(HistoryPlaceTest, PlaceThatCannotBeLookedAtIsAnError) {
    fs::create_symlink("data", directory.Path("data"));
    EXPECT_EQ(Run({"history", "list", "--json", "-"}), 2);
    EXPECT_EQ(out.str(), "");
    EXPECT_THAT(err.str(), HasSubstr("history.db: error: cannot be read (Too many levels"));
}

} // namespace
} // namespace Bench
