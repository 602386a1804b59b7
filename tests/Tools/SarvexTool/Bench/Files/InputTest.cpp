#include "Tools/SarvexTool/Bench/Files/Input.h"

#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace Bench {
namespace {

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

} // namespace
} // namespace Bench
