#include "Tools/Vemo/VemoSimulator/Rates.h"

#include <gtest/gtest.h>

#include <set>

namespace VemoSimulator {

TEST(RatesTest, EachRateHasANameOfItsOwn) {
    const auto names = RateNames();
    EXPECT_EQ(std::set<std::string_view>(names.begin(), names.end()).size(), names.size());
    // 12 legacy rates and the indices of six families.
    EXPECT_EQ(names.size(), 12U + 14 + 14 + 8 + 10 + 12 + 14);
}

TEST(RatesTest, FasterRatesGetLessPower) {
    const struct {
        const char* name;
        int backOff;
    } rows[] = {{"1", 0},          {"2", 0},          {"5.5", 0},        {"11", 0},
                {"6", 0},          {"9", 0},          {"12", 50},        {"18", 50},
                {"24", 100},       {"36", 100},       {"48", 200},       {"54", 250},
                {"MCS0", 0},       {"MCS1", 0},       {"MCS2", 50},      {"MCS3", 100},
                {"MCS5", 200},     {"MCS6", 250},     {"MCS8", 350},     {"MCS12", 600},
                {"MCS4", 150},     {"R13", 700},      {"HT-MCS7", 300},  {"VHT-MCS9", 400},
                {"HE-MCS10", 450}, {"HE-MCS11", 500}, {"EHT-MCS13", 700}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(RateBackOff(row.name), row.backOff);
    }
}

} // namespace VemoSimulator
