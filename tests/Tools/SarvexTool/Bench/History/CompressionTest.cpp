#include "Tools/SarvexTool/Bench/History/Compression.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace Bench {
namespace {

std::string Noise(std::size_t size) {
    std::string bytes;
    unsigned state = 1;
    for (std::size_t index = 0; index < size; ++index) {
        state = state * 1664525 + 1013904223;
        bytes += static_cast<char>(state >> 24);
    }
    return bytes;
}

TEST(CompressionTest, BytesComeBackAsTheyWere) {
    for (const std::string& bytes : {std::string(), std::string("a"), std::string("\0\r\n\xFF", 4),
                                     Noise(100000), std::string(3000000, '5')}) {
        const std::string compressed = Compress(bytes);
        EXPECT_EQ(Decompress(compressed, bytes.size()), bytes) << bytes.size();
    }
}

TEST(CompressionTest, ATableTakesLessThanItsSize) {
    std::string table;
    for (int line = 0; line < 1000; ++line)
        table += "5,AB,80," + std::to_string(line) + ",12.5,13.25\r\n";
    EXPECT_LT(Compress(table).size(), table.size() / 4);
}

TEST(CompressionTest, DamagedBytesAreRefused) {
    const std::string bytes = Noise(1000);
    const std::string compressed = Compress(bytes);
    std::size_t harmless = 0;
    for (std::size_t place = 0; place < compressed.size(); ++place) {
        std::string damaged = compressed;
        damaged[place] = static_cast<char>(damaged[place] ^ 0x10);
        try {
            EXPECT_EQ(Decompress(damaged, bytes.size()), bytes) << place;
            ++harmless;
        } catch (const std::runtime_error&) {
            continue;
        }
    }
    // The format fills a byte up with bits that say nothing.
    EXPECT_LE(harmless, 1U);
    for (std::size_t size = 0; size < compressed.size(); ++size)
        EXPECT_THROW(Decompress(compressed.substr(0, size), bytes.size()), std::runtime_error);
    EXPECT_THROW(Decompress(compressed + "x", bytes.size()), std::runtime_error);
}

TEST(CompressionTest, AnotherSizeIsRefused) {
    const std::string compressed = Compress("a few bytes");
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{10}, std::size_t{12}, std::size_t{1000000}, MostBytesKept + 1,
          std::numeric_limits<std::size_t>::max()})
        EXPECT_THROW(Decompress(compressed, size), std::runtime_error) << size;
}

} // namespace
} // namespace Bench
