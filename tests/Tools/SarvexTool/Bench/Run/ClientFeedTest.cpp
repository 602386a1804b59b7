#include "Tools/SarvexTool/Bench/Run/ClientFeed.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "tests/Support/Files.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

class ClientFeedTest : public testing::Test {
protected:
    TestSupport::TemporaryDirectory directory;
    const std::string testFile = directory.Create("test.csv", "Band,Chains\n5,A\n6,B\n2.4,AB\n");
    const ClientFolder folder{directory.Path("client"), directory.Create("tool", "program"), 4242};
    ClientFeed feed{testFile, 0};
};

TEST_F(ClientFeedTest, RowsAreThoseOfTheClientThatRunsNow) {
    EXPECT_EQ(feed.ResultHeader(), "");
    feed.WriteNext(folder, 2);
    EXPECT_EQ(TestSupport::ReadBytes(folder.Lines()).substr(0, 11), "Band,Chains");
    TestSupport::WriteBytes(folder.Result(), "Band,A\n5,1\n6,2\n");
    EXPECT_EQ(feed.TakeRow(), "5,1\n");
    feed.WriteNext(folder, 2);
    ASSERT_EQ(feed.Lines().size(), 1u);
    EXPECT_EQ(feed.Line(4).text, "2.4,AB");
    EXPECT_EQ(feed.TakeRow(), std::nullopt);
    EXPECT_EQ(feed.ResultHeader(), "");
    TestSupport::WriteBytes(folder.Result(), "Band,A\n");
    EXPECT_EQ(feed.ResultHeader(), "Band,A\n");
}

TEST_F(ClientFeedTest, RowsThatCannotBeRemovedEndTheRun) {
    feed.WriteNext(folder, 1);
    std::filesystem::create_directories(folder.Result() + "/below");
    EXPECT_THROW(feed.WriteNext(folder, 1), BadOutput);
}

} // namespace
} // namespace Bench
