#include "Tools/SarvexTool/Bench/Output/TrendJson.h"
#include "tests/Tools/SarvexTool/Bench/Core/TrendFixture.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>

namespace Bench {
namespace {

class TrendJsonTest : public testing::Test, protected TrendFixture {
protected:
    std::string Written(const std::vector<const Limit*>* limits = nullptr) const {
        const Trend trend = TrendOf(data, limits);
        std::ostringstream stream;
        WriteJson(stream,
                  {data, trend, PowersOf(data, limits),
                   limits == nullptr ? std::nullopt : std::optional<std::string>("limits.csv")});
        return stream.str();
    }

    nlohmann::json Read(const std::vector<const Limit*>* limits = nullptr) const {
        return nlohmann::json::parse(Written(limits));
    }
};

TEST_F(TrendJsonTest, WholeTextOfARunOfOneStation) {
    AddRuns(AddStation("A"), {10, 10.5});
    data.stations[0].firmwares = {"1.4"};
    data.visits[1].device.clear();
    Limit limit;
    limit.maximum = "10.2"_dB;
    const std::vector<const Limit*> limits{&limit};
    EXPECT_EQ(Written(&limits), R"=({"form": "trend", "version": 1,
"fine": false, "conclusion": "OUT OF LIMITS",
"says": ["1 of 2 powers is out of its limits, on 2026-03-03", "too few runs for control limits, which need 8: A (2)", "with one station it cannot be told whether it or what it measures has changed"],
"heldAgainst": "own mean", "sharedMeasurements": 1, "groups": 1, "withoutReference": 0, "limits": "limits.csv",
"stations": [
{"station": "A", "devices": ["DUT A"], "firmwares": ["1.4"], "says": "has 2 runs, too few for control limits, which need 8", "offset": null, "apart": false, "behind": false, "hasRunSince": false, "lost": 0, "timesAsErratic": 0.0, "controlLimits": null, "runsBeyond": 0, "drift": null, "powers": 2, "outOfLimits": 1, "withoutLimit": 0,
"runs": [
{"run": "run0", "measuredAt": "2026-03-02T06:00:00Z", "device": "DUT A", "median": -0.25, "differences": 1, "beyond": false},
{"run": "run1", "measuredAt": "2026-03-03T06:00:00Z", "device": null, "median": 0.25, "differences": 1, "beyond": false}]}
],
"chain": "A", "settings": {"Band": "5", "Channel": "36"},
"powers": [
{"run": "run0", "measuredAt": "2026-03-02T06:00:00Z", "device": "DUT A", "station": "A", "power": 10.0, "outOfLimits": false},
{"run": "run1", "measuredAt": "2026-03-03T06:00:00Z", "device": null, "station": "A", "power": 10.5, "outOfLimits": true}
]
}
)=");
}

TEST_F(TrendJsonTest, DriftHasItsTimesItsChangeAndItsLimits) {
    AddDriftOfC();
    const nlohmann::json trend = Read();
    EXPECT_EQ(trend["fine"], false);
    EXPECT_EQ(trend["conclusion"], "DRIFT");
    EXPECT_EQ(trend["heldAgainst"], "stations");
    EXPECT_EQ(trend["limits"], nullptr);
    EXPECT_FALSE(trend.contains("powers")) << "there are three measurements";
    const nlohmann::json& station = trend["stations"][0];
    EXPECT_EQ(station["station"], "C");
    EXPECT_EQ(station["drift"]["since"], "2026-03-25T06:00:00Z");
    EXPECT_EQ(station["drift"]["until"], "2026-03-31T06:00:00Z");
    EXPECT_EQ(station["drift"]["goesOn"], true);
    EXPECT_EQ(station["drift"]["lasting"], true);
    EXPECT_NEAR(station["drift"]["change"].get<double>(), 2, 1e-9);
    EXPECT_NEAR(station["controlLimits"]["upper"].get<double>(), 0.7683215130023648, 1e-9);
    EXPECT_NEAR(station["controlLimits"]["sigma"].get<double>(), 0.25610717100078817, 1e-9);
    EXPECT_EQ(station["runs"].size(), 10U);
    EXPECT_EQ(station["runs"][7]["beyond"], true);
    EXPECT_FALSE(station.contains("outOfLimits")) << "there were no limits";
    EXPECT_EQ(trend["stations"][1]["drift"], nullptr);
}

TEST_F(TrendJsonTest, LoneRunsThatTheLimitsLeaveOutAreCounted) {
    AddSteady("A", 10);
    AddRuns(0, {15, 10});
    EXPECT_EQ(Read()["stations"][0]["controlLimits"]["leftOut"], 1);
    AddRuns(0, {15});
    EXPECT_EQ(Read()["stations"][0]["controlLimits"]["leftOut"], 0) << "a drift is no lone run";
}

TEST_F(TrendJsonTest, RunsThatShareNothingAreTold) {
    AddItems(2);
    AddStation("A");
    AddStation("B");
    AddRun(0, {10, None});
    AddRun(1, {11, None});
    AddRun(0, {None, 12});
    EXPECT_EQ(Read()["stations"][0]["hasRunSince"], true);
    EXPECT_EQ(Read()["stations"][1]["hasRunSince"], false);
    EXPECT_EQ(Read()["withoutReference"], 1);
    EXPECT_EQ(Read()["groups"], 1);
}

TEST_F(TrendJsonTest, NoSingleDeviceIsNull) {
    AddRuns(AddStation("A"), {10});
    data.visits[0].device.clear();
    data.visits[0].hasSeveralDevices = true;
    EXPECT_EQ(Read()["powers"][0]["device"], nullptr);
    EXPECT_EQ(Read()["stations"][0]["runs"][0]["device"], nullptr);
}

TEST_F(TrendJsonTest, HostileNamesAreTexts) {
    AddSteady("\"},{\x1B\xFF", 10);
    EXPECT_EQ(Read()["stations"][0]["station"], "\"},{\x1B\xEF\xBF\xBD");
    EXPECT_EQ(Written().find('\x1B'), std::string::npos);
}

} // namespace
} // namespace Bench
