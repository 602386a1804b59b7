#include "Tools/SarvexTool/Bench/Output/TrendText.h"
#include "tests/Tools/SarvexTool/Bench/Core/TrendFixture.h"

#include <gmock/gmock.h>

#include <sstream>

namespace Bench {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class TrendTextTest : public testing::Test, protected TrendFixture {
protected:
    std::string Printed(const std::vector<const Limit*>* limits = nullptr,
                        bool hasColours = false) const {
        const Trend trend = TrendOf(data, limits);
        std::ostringstream stream;
        PrintTrend({stream, hasColours}, {data, trend, PowersOf(data, limits), std::nullopt});
        return stream.str();
    }
};

TEST_F(TrendTextTest, StationsAreATableAfterTheFirstLine) {
    AddDriftOfC();
    EXPECT_EQ(
        Printed(),
        R"(DRIFT: C reads 2.00 dB higher since 2026-03-25; 3 of its 10 runs are beyond its control limits

Medians of each run's differences from the reference, the median of the stations, in dB:
Station  Device  runs  offset  lower  upper   last  beyond
C        DUT C     10   -0.55  -0.77  +0.77  +1.40       3
A        DUT A     10   -0.10  -0.57  +0.37  -0.10       0
B        DUT B     10   +0.40  -0.07  +0.87  +0.40       0
)");
}

TEST_F(TrendTextTest, PowersOfOneConfigurationAndChainAreToldWithTheirTimes) {
    AddRuns(AddStation("A"), {10, 10.25});
    Limit limit;
    limit.maximum = "10.2"_dB;
    const std::vector<const Limit*> limits{&limit};
    EXPECT_EQ(Printed(&limits), R"(OUT OF LIMITS: 1 of 2 powers is out of its limits, on 2026-03-03
too few runs for control limits, which need 8: A (2)
with one station it cannot be told whether it or what it measures has changed

Medians of each run's differences from the station's own mean powers, in dB:
Station  Device  runs  offset  lower  upper   last  beyond  out  no limit
A        DUT A      2       -      -      -  +0.13       -    1         0

Band 5, Channel 36, chain A, in dBm:
Measured (UTC)    Station  Device  Run   power  limits
2026-03-02 06:00  A        DUT A   run0  10.00
2026-03-03 06:00  A        DUT A   run1  10.25     out
)");
}

TEST_F(TrendTextTest, PowerOfSeveralDevicesIsSaidToBe) {
    AddRuns(AddStation("A"), {10});
    data.visits[0].device.clear();
    data.visits[0].hasSeveralDevices = true;
    EXPECT_THAT(Printed(), HasSubstr("2026-03-02 06:00  A        several  run0     10\n"));
}

TEST_F(TrendTextTest, WithoutAnyPowerThereIsNoTable) {
    EXPECT_EQ(Printed(), "NO POWER: no kept run that the filter leaves has a power\n");
}

TEST_F(TrendTextTest, NamesReachNoTerminalAsTheyAre) {
    AddSteady("A\x1B[2J", 10);
    AddSteady("B", 11);
    AddRuns(1, {11, 30});
    data.stations[1].name = "\xE2\x80\xAE";
    const std::string text = Printed();
    EXPECT_THAT(text, StartsWith("DRIFT: \\u{202E} reads 19.00 dB higher"));
    EXPECT_THAT(text, HasSubstr("\nA\\x1B[2J  "));
    EXPECT_EQ(text.find('\x1B'), std::string::npos);
}

TEST_F(TrendTextTest, WordIsGreenWhereNothingStandsOutAndElseRed) {
    AddSteady("A", 10);
    EXPECT_THAT(Printed(nullptr, true), StartsWith("\x1B[1;32mSTEADY\x1B[0m: "));
    AddRuns(0, {10, 30});
    EXPECT_THAT(Printed(nullptr, true), StartsWith("\x1B[1;31mDRIFT\x1B[0m: "));
}

} // namespace
} // namespace Bench
