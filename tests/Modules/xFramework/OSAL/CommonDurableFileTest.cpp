#include "Modules/xFramework/OSAL/DurableFile.h"

#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

namespace OSAL {
namespace {

using Opening = DurableFile::Opening;
using TestSupport::ReadBytes;

/// The text of the error that a call throws.
template <typename Call>
std::string ErrorOf(Call call) {
    try {
        call();
    } catch (const std::system_error& error) {
        EXPECT_NE(error.code().value(), 0);
        return error.what();
    }
    return "none";
}

class CommonDurableFileTest : public testing::Test {
protected:
    TestSupport::TemporaryDirectory directory;
    const std::string path = directory.Path("journal.jsonl");
};

TEST_F(CommonDurableFileTest, HoldsWhatWasAppendedByteForByte) {
    const std::string first("a\r\n\0\x1A\xFF\nb", 8);
    DurableFile file(path, Opening::New);
    EXPECT_EQ(file.Size(), 0u);
    file.Append(first);
    file.Append("");
    file.Append("second");
    file.Sync();
    EXPECT_EQ(file.Size(), first.size() + 6);
    EXPECT_EQ(file.Path(), path);
    // Others can read it while it is open.
    EXPECT_EQ(ReadBytes(path), first + "second");
}

TEST_F(CommonDurableFileTest, GoesOnAtItsEnd) {
    directory.Create("journal.jsonl", "old ");
    {
        DurableFile file(path, Opening::Existing);
        EXPECT_EQ(file.Size(), 4u);
        file.Append("new ");
    }
    DurableFile(path, Opening::Either).Append("newest");
    EXPECT_EQ(ReadBytes(path), "old new newest");
}

TEST_F(CommonDurableFileTest, GoesOnWhereItWasCut) {
    DurableFile file(path, Opening::Either);
    file.Append("0123456789");
    file.Truncate(4);
    EXPECT_EQ(file.Size(), 4u);
    file.Append("x");
    EXPECT_EQ(ReadBytes(path), "0123x");
}

TEST_F(CommonDurableFileTest, IsOpenedOnlyAsAsked) {
    EXPECT_EQ(
        ErrorOf([&] { DurableFile(path, Opening::Existing); }).find("cannot open " + path + ": "),
        0u);
    EXPECT_FALSE(std::filesystem::exists(path));
    directory.Create("journal.jsonl", "old");
    EXPECT_EQ(ErrorOf([&] { DurableFile(path, Opening::New); }).find("cannot open " + path + ": "),
              0u);
    EXPECT_EQ(ReadBytes(path), "old");
}

TEST_F(CommonDurableFileTest, IsNoFolder) {
    EXPECT_EQ(ErrorOf([&] {
                  DurableFile(directory.Path(), Opening::Either);
              }).find("cannot open " + directory.Path() + ": "),
              0u);
}

TEST_F(CommonDurableFileTest, HasANameInUtf8) {
    DurableFile(directory.Path() + "/Prüf lauf Ω.jsonl", Opening::New).Append("x");
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(directory.Path()) /
                                        std::filesystem::path(u8"Prüf lauf Ω.jsonl")));
}

TEST_F(CommonDurableFileTest, CanBeMoved) {
    DurableFile file(path, Opening::New);
    DurableFile other(directory.Path("other"), Opening::New);
    DurableFile moved(std::move(file));
    moved.Append("first ");
    other = std::move(moved);
    other.Append("second");
    EXPECT_EQ(other.Path(), path);
    EXPECT_EQ(ReadBytes(path), "first second");
}

TEST_F(CommonDurableFileTest, IsKnownByItsNameAfterItsFolderWasSynced) {
    DurableFile(path, Opening::New).Append("x");
    EXPECT_EQ(ErrorOf([&] { SyncDirectory(directory.Path()); }), "none");
}

} // namespace
} // namespace OSAL
