#include "Tools/SarvexTool/Bench/Daemon/DaemonAddress.h"

#include <gtest/gtest.h>

#include <vector>

namespace Bench {
namespace {

struct AddressCase {
    std::string text;
    std::string host;
    std::uint16_t port;
};

TEST(DaemonAddressTest, AHostMayHaveAPort) {
    for (const auto& [text, host, port] :
         std::vector<AddressCase>{{"127.0.0.1", "127.0.0.1", 0},
                                  {"127.0.0.1:8738", "127.0.0.1", 8738},
                                  {"bench-7.example:1", "bench-7.example", 1},
                                  {"[::1]", "::1", 0},
                                  {"[fe80::1%eth0]:65535", "fe80::1%eth0", 65535}}) {
        SCOPED_TRACE(text);
        const auto address = ParseDaemonAddress(text);
        ASSERT_TRUE(address);
        EXPECT_EQ(address->host, host);
        EXPECT_EQ(address->port, port);
        EXPECT_EQ(address->ToText(), text);
    }
}

TEST(DaemonAddressTest, AnythingElseIsNoAddress) {
    for (const char* const text : {"", ":", ":8738", "host:", "host:0", "host:65536", "host:-1",
                                   "host:87x", "host: 87", "::1", "[::1", "[]", "[::1]8738"})
        EXPECT_FALSE(ParseDaemonAddress(text)) << text;
}

} // namespace
} // namespace Bench
