#include "Tools/SarvexTool/Bench/Files/PlanLines.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

/// The lines with their own settings: "2: Band 5, Chains A".
std::string Describe(std::string_view bytes) {
    TextPool pool;
    PlanLines lines(bytes, pool);
    std::string text;
    LineNumber line = 0;
    Settings own;
    while (lines.Read(line, own)) {
        text += std::to_string(line) + ":";
        for (std::size_t index = 0; index < SettingCount; ++index) {
            const auto setting = static_cast<Setting>(index);
            if (own[setting] != nullptr)
                text.append(" ").append(NameOf(setting)).append("=").append(*own[setting]);
        }
        text += ";";
    }
    return text;
}

std::string HeaderOf(std::string_view bytes) {
    TextPool pool;
    std::string header;
    AppendHeader(header, PlanLines(bytes, pool).Columns());
    return header;
}

TEST(PlanLinesTest, TheColumnsAreInTheHeadersOrder) {
    EXPECT_EQ(HeaderOf("Rate,Band,Large RU Size\n-,-,-\n"), "Rate,Band,Large RU Size\n");
    EXPECT_EQ(HeaderOf(" Rate , Band,\r\n"), "Rate,Band\n");
    EXPECT_EQ(HeaderOf("Band,Chains,Band\n"), "Chains,Band\n") << "as the client counts them";
}

TEST(PlanLinesTest, LinesHaveTheSettingsThatTheyWriteThemselves) {
    EXPECT_EQ(Describe("Chains,Band\nA,5\n-,6\n-,-\nB , 5\r\n"),
              "2: Band=5 Chains=A;3: Band=6;4:;5: Band=5 Chains=B;");
}

TEST(PlanLinesTest, AnEmptyLineAndCellsBeyondTheHeaderSetNothing) {
    EXPECT_EQ(Describe("Band\n5,x\n\n6,,y"), "2: Band=5;3:;4: Band=6;");
    EXPECT_EQ(Describe("Band"), "");
}

TEST(PlanLinesTest, LinesAreWrittenWithAllTheirCells) {
    TextPool pool;
    Settings settings;
    settings[Setting::Band] = pool.Keep("5");
    settings[Setting::Rate] = pool.Keep("HE-MCS3");
    std::string text;
    AppendLine(text, {Setting::Rate, Setting::Chains, Setting::Band}, settings);
    AppendLine(text, {Setting::Chains}, settings);
    EXPECT_EQ(text, "HE-MCS3,-,5\n-\n");
}

} // namespace
} // namespace Bench
