#include "Tools/SarvexTool/Bench/Supervision/ClientExchanges.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

TEST(ClientExchangesTest, ThreeComeBeforeTheLinesAndTwoForEachLine) {
    ClientExchanges exchanges({7, 2});
    EXPECT_EQ(exchanges.LastInWords(), "the beginning of a segment");
    for (const ExchangeKind kind :
         {ExchangeKind::FirstCommand, ExchangeKind::MacType, ExchangeKind::CountryCode}) {
        EXPECT_EQ(exchanges.Next(), kind);
        exchanges.Count();
    }
    EXPECT_EQ(exchanges.LastInWords(), "the question for the country code");
    for (const LineNumber line : {7U, 8U}) {
        EXPECT_FALSE(exchanges.IsComplete());
        EXPECT_EQ(exchanges.Next(), ExchangeKind::Start);
        EXPECT_EQ(exchanges.NextLine(), line);
        exchanges.Count();
        EXPECT_EQ(exchanges.Next(), ExchangeKind::Stop);
        EXPECT_EQ(exchanges.NextLine(), line);
        exchanges.Count();
    }
    EXPECT_TRUE(exchanges.IsComplete());
}

TEST(ClientExchangesTest, ClientWithoutLinesAsksForTheDeviceOnly) {
    ClientExchanges exchanges({0, 0});
    for (int count = 0; count < 3; ++count) {
        EXPECT_FALSE(exchanges.IsComplete());
        exchanges.Count();
    }
    EXPECT_TRUE(exchanges.IsComplete());
}

} // namespace
} // namespace Bench
