#include "Tools/SarvexTool/Bench/Files/Input.h"

#include "tests/Support/Files.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace Bench {
namespace {

using testing::EndsWith;
using testing::StartsWith;

class InputTest : public testing::Test {
protected:
    /// The problem that reading the file ends with.
    std::string ProblemOf(const std::string& name) {
        try {
            ReadInput(name, standardInput);
        } catch (const BadInput& bad) {
            EXPECT_EQ(bad.File(), name);
            EXPECT_EQ(bad.Problems().size(), 1);
            return bad.Problems()[0].text;
        }
        return "none";
    }

    TestSupport::TemporaryDirectory directory;
    std::istringstream standardInput;
};

TEST_F(InputTest, AllBytesAreReadAsTheyAre) {
    for (const std::string& bytes :
         {std::string(), std::string("Band\r\n5\r\n"), std::string("\x1A\0\xFF\n", 4)})
        EXPECT_EQ(ReadInput(directory.Create("a.csv", bytes), standardInput), bytes);
}

TEST_F(InputTest, AFileOfSeveralBlocksIsWhole) {
    for (const std::size_t size : {65535u, 65536u, 65537u, 300000u}) {
        std::string bytes;
        while (bytes.size() < size)
            bytes += std::to_string(bytes.size());
        EXPECT_TRUE(ReadInput(directory.Create("a.csv", bytes), standardInput) == bytes) << size;
        standardInput.clear();
        standardInput.str(bytes);
        EXPECT_TRUE(ReadInput("-", standardInput) == bytes) << size;
    }
}

TEST_F(InputTest, ANameMayHoldAnyCharacter) {
    const std::u8string name = u8"Ω 測試.csv";
    std::ofstream(std::filesystem::path(directory.Path()) / name) << "here";
    EXPECT_EQ(ReadInput(directory.Path() + "/Ω 測試.csv", standardInput), "here");
}

TEST_F(InputTest, WhatIsNotThereSaysWhy) {
    EXPECT_EQ(ProblemOf(directory.Path("none.csv")), "cannot be read (No such file or directory)");
}

TEST_F(InputTest, AFolderIsNoFile) {
    EXPECT_EQ(ProblemOf(directory.Path()), "cannot be read (Is a directory)");
}

TEST_F(InputTest, AWorkbookIsNoText) {
    const std::string problem = "is a spreadsheet's workbook; save the sheet as CSV";
    const std::string archive("PK\x03\x04\x14\0", 6);
    EXPECT_EQ(ProblemOf(directory.Create("a.xlsx", archive)), problem);
    EXPECT_EQ(ProblemOf(directory.Create("a.xls", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1 ")), problem);
    standardInput.str(archive);
    EXPECT_EQ(ProblemOf("-"), problem);
    EXPECT_EQ(ProblemOf(directory.Create("a.csv", "PK\n")), "none");
}

TEST_F(InputTest, AStreamThatFailsIsToldAndNotTakenForItsEnd) {
    class FailingBuffer : public std::streambuf {
        int underflow() override { throw std::runtime_error("the disk is gone"); }
    };
    FailingBuffer buffer;
    std::istream broken(&buffer);
    EXPECT_THROW(ReadInput("-", broken), BadInput);
}

class InputPiecesTest : public testing::Test {
protected:
    static std::string Read(const std::string& name) {
        std::string bytes;
        ReadPieces(name, [&bytes](std::string_view piece) { bytes += piece; });
        return bytes;
    }

    TestSupport::TemporaryDirectory directory;
};

TEST_F(InputPiecesTest, AreTogetherTheFile) {
    std::string large(200'000, 'x');
    for (std::size_t index = 0; index < large.size(); index += 7)
        large[index] = static_cast<char>(index);
    for (const std::string& bytes : {std::string(), std::string("a\r\n\0\x1A\n", 6), large})
        EXPECT_EQ(Read(directory.Create("file", bytes)), bytes);
}

TEST_F(InputPiecesTest, OfNoFileThereAreNone) {
    const std::string name = directory.Path("none");
    try {
        Read(name);
        FAIL() << "nothing was thrown";
    } catch (const BadInput& bad) {
        EXPECT_EQ(bad.File(), name);
        EXPECT_THAT(bad.Problems().at(0).text, StartsWith("cannot be read ("));
    }
}

TEST_F(InputPiecesTest, OfAWildcardThereAreNone) {
    try {
        Read(directory.Path("*.csv"));
        FAIL() << "nothing was thrown";
    } catch (const BadInput& bad) {
        EXPECT_THAT(bad.Problems().at(0).text, EndsWith("expands no wildcards: name each file"));
    }
}

TEST_F(InputPiecesTest, AreHashedTogether) {
    EXPECT_EQ(HashOfFile(directory.Create("file", "abc")),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

} // namespace
} // namespace Bench
