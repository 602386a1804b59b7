#include "Modules/xFramework/OSAL/File.h"

#include "Modules/xFramework/OSAL/Process.h"
#include "Modules/xFramework/Utilities/ProgramFiles.h"
#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace OSAL {
namespace {

class CommonFileTest : public testing::Test {
protected:
    /// What one read of size bytes gives.
    static std::string Read(const OwnedHandle& file, std::size_t size) {
        std::array<char, 64> buffer{};
        return std::string(buffer.data(), ReadFile(file, buffer.data(), size));
    }

    TestSupport::TemporaryDirectory directory;
    const std::string path = directory.Create("Socket.cfg", "87381");
    const std::string missing = directory.Path("missing");
};

TEST_F(CommonFileTest, IsToBeArchivedAndHasOneName) {
    const PathKind kind = LookAtPath(path);
    EXPECT_TRUE(kind.isToBeArchived);
    EXPECT_FALSE(kind.isDirectory);
    EXPECT_FALSE(kind.isSymbolicLink);
    EXPECT_EQ(CountNames(path), 1u);
    EXPECT_FALSE(Utilities::IsLink(path));
}

TEST_F(CommonFileTest, ThatIsMissingIsOfNoKindAndHasNoName) {
    const PathKind kind = LookAtPath(missing);
    EXPECT_FALSE(kind.isToBeArchived);
    EXPECT_FALSE(kind.isDirectory);
    EXPECT_FALSE(kind.isSymbolicLink);
    EXPECT_EQ(CountNames(missing), 0u);
    EXPECT_FALSE(Utilities::IsLink(missing));
}

TEST_F(CommonFileTest, WithASecondNameIsALinkByBothNames) {
    const std::string second = directory.Path("second");
    std::filesystem::create_hard_link(path, second);
    EXPECT_EQ(CountNames(path), 2u);
    EXPECT_EQ(CountNames(second), 2u);
    EXPECT_TRUE(Utilities::IsLink(path));
    EXPECT_TRUE(Utilities::IsLink(second));

    std::filesystem::remove(second);
    EXPECT_EQ(CountNames(path), 1u);
    EXPECT_FALSE(Utilities::IsLink(path));
}

TEST_F(CommonFileTest, OfADirectoryIsNoLink) {
    const std::string folder = directory.Path("folder");
    std::filesystem::create_directory(folder);
    EXPECT_TRUE(LookAtPath(folder).isDirectory);
    EXPECT_FALSE(LookAtPath(folder).isToBeArchived);
    EXPECT_FALSE(Utilities::IsLink(folder));
}

TEST_F(CommonFileTest, IsReadPieceByPieceToItsEnd) {
    OwnedHandle file = OpenFileForReading(path);
    ASSERT_TRUE(file.IsOpen());
    EXPECT_EQ(Read(file, 4), "8738");
    EXPECT_EQ(Read(file, 4), "1");
    EXPECT_EQ(Read(file, 4), "");
    EXPECT_TRUE(file.Close());
}

TEST_F(CommonFileTest, IsReadByteForByte) {
    const std::string content("a\r\n\0\x1A\xFF\nb", 8);
    OwnedHandle file = OpenFileForReading(directory.Create("bytes", content));
    EXPECT_EQ(Read(file, 64), content);
    EXPECT_TRUE(file.Close());
}

TEST_F(CommonFileTest, IsOpenedByTwoReadersAtOnce) {
    OwnedHandle first = OpenFileForReading(path);
    OwnedHandle second = OpenFileForReading(path);
    EXPECT_EQ(Read(first, 64), "87381");
    EXPECT_EQ(Read(second, 64), "87381");
    EXPECT_TRUE(first.Close());
    EXPECT_TRUE(second.Close());
}

TEST_F(CommonFileTest, ThatCannotBeOpenedGivesNoHandleAndHoldsNothingToRead) {
    OwnedHandle file = OpenFileForReading(missing);
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(Read(file, 5), "");
    file.Close(); // Does no harm; what it gives is the system's affair.
    OwnedHandle next = OpenFileForReading(path);
    EXPECT_EQ(Read(next, 5), "87381");
    EXPECT_TRUE(next.Close());
}

TEST_F(CommonFileTest, IsReadAsTextWhileSomeoneWritesIt) {
    const std::string text(20000, 'x');
    std::ofstream writer(directory.Path("written"));
    writer << text << "\n" << std::flush;
    EXPECT_EQ(ReadTextFile(directory.Path("written")), text + "\n");
}

TEST_F(CommonFileTest, IsReadAsTextInTheTextModeOfThePlatform) {
    const std::string content("a\r\n\0\xFF\n\x1A"
                              "b\n",
                              9);
    const std::string bytes = directory.Create("bytes", content);
    std::ifstream file(bytes);
    const std::string expected{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(ReadTextFile(bytes), expected);
    EXPECT_EQ(expected.size(), PathSeparator == '/' ? 9u : 5u);
}

TEST_F(CommonFileTest, ThatIsNoneGivesAnEmptyText) {
    EXPECT_EQ(ReadTextFile(missing), "");
    EXPECT_EQ(ReadTextFile(directory.Path()), "");
    EXPECT_EQ(ReadTextFile(directory.Create("empty", "")), "");
}

} // namespace
} // namespace OSAL
