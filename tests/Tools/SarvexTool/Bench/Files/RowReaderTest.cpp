#include "Tools/SarvexTool/Bench/Files/RowReader.h"

#include "tests/Support/Files.h"

#include <gtest/gtest.h>

#include <string>

namespace Bench {
namespace {

class RowReaderTest : public testing::Test {
protected:
    void Write(const std::string& bytes) const { TestSupport::WriteBytes(path, bytes); }

    TestSupport::TemporaryDirectory directory;
    const std::string path = directory.Path("result.csv");
};

TEST_F(RowReaderTest, RowsAreTakenWhenTheyAreWhole) {
    RowReader reader(path, true);
    EXPECT_EQ(reader.TakeRow(), std::nullopt);
    Write("Ban");
    EXPECT_EQ(reader.TakeRow(), std::nullopt);
    EXPECT_EQ(reader.Header(), "");
    Write("Band,A\n");
    EXPECT_EQ(reader.TakeRow(), std::nullopt);
    EXPECT_EQ(reader.Header(), "Band,A\n");
    Write("Band,A\n5,1");
    EXPECT_EQ(reader.TakeRow(), std::nullopt);
    Write("Band,A\n5,1.5\n6,");
    EXPECT_EQ(reader.TakeRow(), "5,1.5\n");
    EXPECT_EQ(reader.TakeRow(), std::nullopt);
    Write("Band,A\n5,1.5\n6,2\n\n");
    EXPECT_EQ(reader.TakeRow(), "6,2\n");
    EXPECT_EQ(reader.TakeRow(), "\n");
    EXPECT_EQ(reader.TakeRow(), std::nullopt);
    EXPECT_EQ(reader.Header(), "Band,A\n");
}

TEST_F(RowReaderTest, AHeaderAndItsFirstRowAreTakenAtOnce) {
    Write("Band,A\r\n5,\x1A\xFF\r\n");
    RowReader reader(path, true);
    EXPECT_EQ(reader.TakeRow(), "5,\x1A\xFF\r\n");
    EXPECT_EQ(reader.Header(), "Band,A\r\n");
}

TEST_F(RowReaderTest, TheHeaderNeedsNoRow) {
    RowReader reader(path, true);
    Write("Band,A");
    EXPECT_EQ(reader.Header(), "");
    Write("Band,A\n");
    EXPECT_EQ(reader.Header(), "Band,A\n");
    EXPECT_EQ(reader.TakeRow(), std::nullopt);
}

TEST_F(RowReaderTest, WithoutAHeaderTheFirstLineIsARow) {
    Write("5,1\n6,2\n");
    RowReader reader(path, false);
    EXPECT_EQ(reader.TakeRow(), "5,1\n");
    EXPECT_EQ(reader.TakeRow(), "6,2\n");
    EXPECT_EQ(reader.TakeRow(), std::nullopt);
    EXPECT_EQ(reader.Header(), "");
}

} // namespace
} // namespace Bench
