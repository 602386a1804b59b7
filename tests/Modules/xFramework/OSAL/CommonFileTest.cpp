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

class RealFile : public testing::Test {
protected:
    /// What one read of size bytes gives.
    static std::string Read(Handle file, std::size_t size) {
        std::array<char, 64> buffer{};
        return std::string(buffer.data(), ReadFile(file, buffer.data(), size));
    }

    TestSupport::TemporaryDirectory directory;
    const std::string path = directory.Create("Socket.cfg", "87381");
    const std::string missing = directory.Path("missing");
};

// Who asks gets the numbers of Windows on either system.
TEST(FileConstants, AreThoseOfWindows) {
    EXPECT_EQ(InvalidFileAttributes, 0xFFFFFFFFu);
    EXPECT_EQ(ArchiveAttribute, 0x20u);
    EXPECT_EQ(ReparsePointAttribute, 0x400u);
    EXPECT_EQ(SymbolicLinkTag, 0xA000000Cu);
    EXPECT_EQ(InvalidHandle + 1, 0u);
}

TEST_F(RealFile, BearsTheArchiveAttributeAndNoReparsePoint) {
    EXPECT_EQ(ReadFileAttributes(path) & (ArchiveAttribute | ReparsePointAttribute),
              ArchiveAttribute);
    EXPECT_EQ(ReadReparseTag(path), 0u);
    EXPECT_EQ(CountHardLinks(path), 1u);
    EXPECT_FALSE(Utilities::IsLink(path));
}

TEST_F(RealFile, ThatIsMissingHasNoAttributesAndNoLinks) {
    EXPECT_EQ(ReadFileAttributes(missing), InvalidFileAttributes);
    EXPECT_EQ(ReadReparseTag(missing), 0u);
    EXPECT_EQ(CountHardLinks(missing), 0u);
    EXPECT_FALSE(Utilities::IsLink(missing));
}

TEST_F(RealFile, WithASecondNameIsALinkByBothNames) {
    const std::string second = directory.Path("second");
    std::filesystem::create_hard_link(path, second);
    EXPECT_EQ(CountHardLinks(path), 2u);
    EXPECT_EQ(CountHardLinks(second), 2u);
    EXPECT_TRUE(Utilities::IsLink(path));
    EXPECT_TRUE(Utilities::IsLink(second));

    std::filesystem::remove(second);
    EXPECT_EQ(CountHardLinks(path), 1u);
    EXPECT_FALSE(Utilities::IsLink(path));
}

TEST_F(RealFile, OfADirectoryIsNoLink) {
    const std::string folder = directory.Path("folder");
    std::filesystem::create_directory(folder);
    EXPECT_EQ(ReadFileAttributes(folder) & ArchiveAttribute, 0u);
    EXPECT_FALSE(Utilities::IsLink(folder));
}

TEST_F(RealFile, IsReadPieceByPieceToItsEnd) {
    const Handle file = OpenFileForReading(path);
    ASSERT_NE(file, InvalidHandle);
    EXPECT_EQ(Read(file, 4), "8738");
    EXPECT_EQ(Read(file, 4), "1");
    EXPECT_EQ(Read(file, 4), "");
    EXPECT_TRUE(CloseHandle(file));
}

TEST_F(RealFile, IsReadByteForByte) {
    const std::string content("a\r\n\0\x1A\xFF\nb", 8);
    const Handle file = OpenFileForReading(directory.Create("bytes", content));
    EXPECT_EQ(Read(file, 64), content);
    EXPECT_TRUE(CloseHandle(file));
}

TEST_F(RealFile, IsOpenedByTwoReadersAtOnce) {
    const Handle first = OpenFileForReading(path);
    const Handle second = OpenFileForReading(path);
    EXPECT_EQ(Read(first, 64), "87381");
    EXPECT_EQ(Read(second, 64), "87381");
    EXPECT_TRUE(CloseHandle(first));
    EXPECT_TRUE(CloseHandle(second));
}

TEST_F(RealFile, ThatCannotBeOpenedGivesAnInvalidHandleThatIsHarmless) {
    const Handle file = OpenFileForReading(missing);
    EXPECT_EQ(file, InvalidHandle);
    EXPECT_EQ(Read(file, 5), "");
    CloseHandle(file);
    const Handle next = OpenFileForReading(path);
    EXPECT_EQ(Read(next, 5), "87381");
    EXPECT_TRUE(CloseHandle(next));
}

TEST_F(RealFile, IsReadAsTextWhileSomeoneWritesIt) {
    const std::string text(20000, 'x');
    std::ofstream writer(directory.Path("written"));
    writer << text << "\n" << std::flush;
    EXPECT_EQ(ReadTextFile(directory.Path("written")), text + "\n");
}

TEST_F(RealFile, IsReadAsTextInTheTextModeOfThePlatform) {
    const std::string content("a\r\n\0\xFF\n\x1A"
                              "b\n",
                              9);
    const std::string bytes = directory.Create("bytes", content);
    std::ifstream file(bytes);
    const std::string expected{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(ReadTextFile(bytes), expected);
    EXPECT_EQ(expected.size(), PathSeparator == '/' ? 9u : 5u);
}

TEST_F(RealFile, ThatIsNoneGivesAnEmptyText) {
    EXPECT_EQ(ReadTextFile(missing), "");
    EXPECT_EQ(ReadTextFile(directory.Path()), "");
    EXPECT_EQ(ReadTextFile(directory.Create("empty", "")), "");
}

} // namespace
} // namespace OSAL
