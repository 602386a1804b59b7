#include "Tools/SarvexTool/Bench/Files/Base64.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Bench {
namespace {

struct Case {
    std::string bytes;
    std::string text;
};

TEST(Base64Test, BytesBecomeTextAndBytesAgain) {
    // The vectors of RFC 4648, and bytes that are no text.
    for (const Case& each : std::vector<Case>{{"", ""},
                                              {"f", "Zg=="},
                                              {"fo", "Zm8="},
                                              {"foo", "Zm9v"},
                                              {"foob", "Zm9vYg=="},
                                              {"fooba", "Zm9vYmE="},
                                              {"foobar", "Zm9vYmFy"},
                                              {std::string("\0\xFF\xFE\x80", 4), "AP/+gA=="}}) {
        SCOPED_TRACE(each.text);
        EXPECT_EQ(ToBase64(each.bytes), each.text);
        EXPECT_EQ(FromBase64(each.text), each.bytes);
    }
}

TEST(Base64Test, ATextThatNoBytesBecomeIsRefused) {
    for (const std::string text : {"Z", "Zg", "Zg=", "Zg===", "=", "====", "Zh==", "Zm9=", "Zm 9v",
                                   "Zm9v\n", "Zm9v====", "Z=9v", "Zm9\xFF"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(FromBase64(text), std::nullopt);
    }
}

TEST(Base64Test, EveryByteComesBack) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    EXPECT_EQ(FromBase64(ToBase64(bytes)), bytes);
}

} // namespace
} // namespace Bench
