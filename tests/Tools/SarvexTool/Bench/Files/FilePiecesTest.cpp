#include "Tools/SarvexTool/Bench/Files/FilePieces.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "tests/Support/Files.h"

#include <gmock/gmock.h>

#include <string>

namespace Bench {
namespace {

using testing::EndsWith;
using testing::StartsWith;

class FilePiecesTest : public testing::Test {
protected:
    static std::string Read(const std::string& name) {
        std::string bytes;
        ReadPieces(name, [&bytes](std::string_view piece) { bytes += piece; });
        return bytes;
    }

    TestSupport::TemporaryDirectory directory;
};

TEST_F(FilePiecesTest, AreTogetherTheFile) {
    std::string large(200'000, 'x');
    for (std::size_t index = 0; index < large.size(); index += 7)
        large[index] = static_cast<char>(index);
    for (const std::string& bytes : {std::string(), std::string("a\r\n\0\x1A\n", 6), large})
        EXPECT_EQ(Read(directory.Create("file", bytes)), bytes);
}

TEST_F(FilePiecesTest, OfNoFileThereAreNone) {
    const std::string name = directory.Path("none");
    try {
        Read(name);
        FAIL() << "nothing was thrown";
    } catch (const BadInput& bad) {
        EXPECT_EQ(bad.File(), name);
        EXPECT_THAT(bad.Problems().at(0).text, StartsWith("cannot be read ("));
    }
}

TEST_F(FilePiecesTest, OfAWildcardThereAreNone) {
    try {
        Read(directory.Path("*.csv"));
        FAIL() << "nothing was thrown";
    } catch (const BadInput& bad) {
        EXPECT_THAT(bad.Problems().at(0).text, EndsWith("expands no wildcards: name each file"));
    }
}

TEST_F(FilePiecesTest, AreHashedTogether) {
    EXPECT_EQ(HashOfFile(directory.Create("file", "abc")),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

} // namespace
} // namespace Bench
