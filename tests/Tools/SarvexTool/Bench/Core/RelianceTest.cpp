#include "Tools/SarvexTool/Bench/Core/Reliance.h"
#include "tests/Tools/SarvexTool/Bench/Core/CoreFixture.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <random>
#include <tuple>

namespace Bench {
namespace {

class RelianceTest : public testing::Test, protected CoreFixture {
protected:
    void Add(Cells own) { m_finder.Add(++m_line, Of(own)); }

    std::string Describe() {
        std::string text;
        for (const Reliance& reliance : m_finder.Take())
            text += std::to_string(reliance.lines.first) + "-" +
                    std::to_string(reliance.lines.last) + " on " + std::to_string(reliance.on) +
                    ": " + reliance.Names() + "\n";
        return text;
    }

    std::string Problems() {
        ProblemList problems;
        TellReliances(m_finder, problems);
        std::string text;
        for (const Problem& problem : problems.InOrder())
            text += std::to_string(problem.line) + ": " + problem.text + "\n";
        return text;
    }

    static std::string AllBut(const std::vector<Setting>& left) {
        std::string names;
        for (std::size_t index = 0; index < SettingCount; ++index) {
            const auto setting = static_cast<Setting>(index);
            if (std::find(left.begin(), left.end(), setting) == left.end())
                names.append(names.empty() ? "" : ", ").append(NameOf(setting));
        }
        return names;
    }

    RelianceFinder m_finder;
    LineNumber m_line = 1;
};

TEST_F(RelianceTest, WithoutLinesThereIsNone) {
    EXPECT_EQ(Describe(), "");
}

TEST_F(RelianceTest, LinesUpToTheNextThatWritesASettingRelyOnTheOneBefore) {
    Add({{Setting::Band, "5"}, {Setting::Mode, "SISO"}, {Setting::Rate, "1"}});
    Add({{Setting::Rate, "2"}});
    Add({{Setting::Rate, "3"}, {Setting::Band, "6"}});
    Add({});
    EXPECT_EQ(Describe(), "2-5 on 0: " + AllBut({Setting::Band, Setting::Mode, Setting::Rate}) +
                              "\n" +
                              "3-3 on 2: Band\n"
                              "3-5 on 2: Mode\n"
                              "5-5 on 4: Band, Rate\n");
}

TEST_F(RelianceTest, SettingsThatNoLineHasSetYetRelyOnNone) {
    Add({{Setting::Band, "5"}});
    Add({{Setting::Rate, "2"}});
    EXPECT_EQ(Describe(), "2-2 on 0: Rate\n2-3 on 0: " + AllBut({Setting::Band, Setting::Rate}) +
                              "\n3-3 on 2: Band\n");
}

TEST_F(RelianceTest, EachIsToldInOneSentence) {
    Add({{Setting::Band, "5"}, {Setting::Mode, "SISO"}});
    Add({{Setting::Mode, "MIMO"}});
    Add({{Setting::Mode, "SISO"}});
    Add({});
    EXPECT_EQ(Problems(),
              "2: lines 2 to 5 leave out " + AllBut({Setting::Band, Setting::Mode}) +
                  ", which no line has set: each bench's own value counts there, or what another "
                  "chunk has left; set it in line 2\n"
                  "2: lines 3 to 5 take Band from line 2; should the daemon refuse line 2, one run "
                  "of the whole plan would use other settings there than the chunks do\n"
                  "4: line 5 takes Mode from line 4; should the daemon refuse line 4, one run of "
                  "the whole plan would use other settings there than the chunks do\n");
}

/// Whichever ends first: line 2 is relied on to the end, and must not be counted only.
TEST_F(RelianceTest, TheFirstOnesAreNamedAndTheOthersCounted) {
    const LineNumber pairs = 5 * ProblemList::MostOfAKind;
    Add({{Setting::Band, "5"}});
    for (LineNumber pair = 0; pair < pairs; ++pair) {
        Add({{Setting::Rate, "1"}});
        Add({});
    }
    const std::string problems = Problems();
    EXPECT_NE(problems.find("\n2: lines 3 to 1002 take Band from line 2;"), std::string::npos);
    EXPECT_NE(problems.find("\n199: line 200 takes Rate from line 199;"), std::string::npos);
    EXPECT_EQ(problems.find("\n201: "), std::string::npos);
    EXPECT_NE(problems.find("\n0: and 401 more lines that others take settings from\n"),
              std::string::npos)
        << problems;
}

/// Which line each setting of each line comes from, as one would look it up.
TEST_F(RelianceTest, IsWhatLookingBackFromEachLineFinds) {
    std::minstd_rand random(7);
    for (int round = 0; round < 300; ++round) {
        RelianceFinder finder;
        std::array<LineNumber, SettingCount> from{};
        std::map<std::tuple<LineNumber, LineNumber, std::size_t>, int> expected;
        const auto lines = static_cast<LineNumber>(1 + random() % 12);
        for (LineNumber line = 2; line < 2 + lines; ++line) {
            Settings own;
            for (std::size_t index = 0; index < SettingCount; ++index) {
                if (random() % 3 == 0) {
                    own[static_cast<Setting>(index)] = Text("x");
                    from[index] = line;
                } else {
                    expected[{line, from[index], index}] = 1;
                }
            }
            finder.Add(line, own);
        }
        std::map<std::tuple<LineNumber, LineNumber, std::size_t>, int> found;
        for (const Reliance& reliance : finder.Take()) {
            for (LineNumber line = reliance.lines.first; line <= reliance.lines.last; ++line) {
                for (std::size_t index = 0; index < SettingCount; ++index) {
                    if ((reliance.settings >> index & 1U) != 0)
                        ++found[{line, reliance.on, index}];
                }
            }
        }
        EXPECT_EQ(found, expected) << "round " << round;
    }
}

} // namespace
} // namespace Bench
