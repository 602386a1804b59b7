#include "Tools/Vemo/VemoClient/DynamicTest/ReplySearch.h"

#include <gtest/gtest.h>

#include <iterator>
#include <optional>
#include <random>
#include <regex>
#include <string>

namespace PowerTest {

namespace {

using namespace std::string_literals;

const std::string powerPattern = R"(Target Power: .*Chain A \(1\) (-?\d+\.*\d*) dBm)";
const std::string countryPattern = R"(Current MCC: (\w{2}))";
const std::string macPattern = R"(Mac Type: (\d*))";
const std::string power = "Target Power: Chain A (1) 17.5 dBm";

struct Case {
    const char* reply;
    std::optional<std::string> found;
};

void ExpectFound(const std::string& pattern, std::initializer_list<Case> cases) {
    for (const auto& [reply, found] : cases) {
        SCOPED_TRACE(reply);
        EXPECT_EQ(FindInReply(reply, pattern), found);
    }
}

TEST(ReplySearchTest, MacTypeIsTheDigitsAfterTheFirstLabel) {
    ExpectFound(macPattern, {{"Mac Type: 16\n", "16"},
                             {"x\nMac Type: 016abc\nMac Type: 5\n", "016"},
                             {"The Mac Type: 5", "5"},
                             {"Mac Type: \nMac Type: 5", ""},
                             {"Mac Type: -5", ""},
                             {"Mac Type:5", std::nullopt},
                             {"mac type: 5", std::nullopt},
                             {"Mac Type: ", ""},
                             {"", std::nullopt}});
}

TEST(ReplySearchTest, CountryCodeIsTheFirstTwoWordCharactersAfterALabel) {
    ExpectFound(countryPattern, {{"Current MCC: US\n", "US"},
                                 {"Current MCC: USA", "US"},
                                 {"Current MCC: _9", "_9"},
                                 {"Current MCC: U\n", std::nullopt},
                                 {"Current MCC: U\nCurrent MCC: DE", "DE"},
                                 {"Current MCC: U Current MCC: DE", "DE"},
                                 {"Current MCC: \xE4\xF6", std::nullopt},
                                 {"Current MCC: -", std::nullopt}});
}

TEST(ReplySearchTest, TargetPowerIsTheTextOfTheNumber) {
    ExpectFound(powerPattern, {{"Target Power: Chain A (1) 17.5 dBm", "17.5"},
                               {"Target Power: anything (at all) Chain A (1) -3 dBm, more", "-3"},
                               {"Target Power: Chain A (1) -0.5 dBm", "-0.5"},
                               {"Target Power: Chain A (1) 17..5 dBm", "17..5"},
                               {"Target Power: Chain A (1) 17. dBm", "17."},
                               {"Target Power: Chain A (1) 007 dBm", "007"},
                               {"Target Power: Chain A (1) .5 dBm", std::nullopt},
                               {"Target Power: Chain A (1) 1.2.3 dBm", std::nullopt},
                               {"Target Power: Chain A (1) +5 dBm", std::nullopt},
                               {"Target Power: Chain A (1) 17.5dBm", std::nullopt},
                               {"Target Power: Chain A (2) 17.5 dBm", std::nullopt},
                               {"Target Power: Chain B (2) 17.5 dBm", std::nullopt},
                               {"Target Power:Chain A (1) 17.5 dBm", std::nullopt},
                               {"Chain A (1) 17.5 dBm Target Power: ", std::nullopt}});
}

TEST(ReplySearchTest, LabelAndChainAreOnOneLine) {
    ExpectFound(powerPattern, {{"Target Power: \nChain A (1) 17.5 dBm", std::nullopt},
                               {"Target Power: \rChain A (1) 17.5 dBm", std::nullopt},
                               {"Target Power: \nTarget Power: Chain A (1) 18 dBm\r\n", "18"},
                               {"Target Power: Chain A (1) x dBm\nTarget Power: Chain A (1) 2 dBm"
                                "\nTarget Power: Chain A (1) 3 dBm",
                                "2"}});
}

TEST(ReplySearchTest, LastChainOfTheFirstLineThatMatchesCounts) {
    ExpectFound(powerPattern,
                {{"Target Power: Chain A (1) 1 dBm Chain A (1) 2 dBm", "2"},
                 {"Target Power: Chain A (1) 1 dBm Chain A (1) x dBm", "1"},
                 {"Target Power: Chain A (1) 1 dBm Target Power: Chain A (1) 2 dBm", "2"},
                 {"Target Power: x Target Power: Chain A (1) 2 dBm", "2"}});
}

TEST(ReplySearchTest, ZeroBytesAreTextLikeAnyOther) {
    EXPECT_EQ(FindInReply("Target Power: \0\xFF Chain A (1) 5 dBm"s, powerPattern), "5");
    EXPECT_EQ(FindInReply("\0Mac Type: 7\0"s, macPattern), "7");
}

TEST(ReplySearchTest, MalformedPatternThrows) {
    EXPECT_THROW(FindInReply("a", "a("), std::regex_error);
}

std::optional<std::string> LibrarySearch(const std::string& reply, const std::string& pattern) {
    std::smatch match;
    if (!std::regex_search(reply, match, std::regex(pattern)) || !match[1].matched)
        return std::nullopt;
    return match[1].str();
}

/// A reply made of the pieces that decide, in any order.
std::string RandomReply(std::mt19937& random) {
    static const std::string pieces[] = {"Target Power: ",
                                         "Chain A (1) ",
                                         "17",
                                         "..",
                                         "-",
                                         " dBm",
                                         "\n",
                                         "\r",
                                         "x",
                                         "Current MCC: ",
                                         "U",
                                         "Mac Type: ",
                                         "5",
                                         " ",
                                         "Target ",
                                         "Chain ",
                                         "\0"s};
    std::string reply;
    for (auto count = std::uniform_int_distribution<>(0, 25)(random); count > 0; --count)
        reply +=
            pieces[std::uniform_int_distribution<std::size_t>(0, std::size(pieces) - 1)(random)];
    return reply;
}

/// Two lines of the right pieces in the right order, with one left out or doubled here and there.
std::string RandomPowerReply(std::mt19937& random) {
    static const std::string pieces[] = {"Target Power: ", "x", "Chain A (1) ", "-", "17", ".", "5",
                                         " dBm",           "\n"};
    std::string reply;
    for (int line = 0; line < 2; ++line) {
        for (const std::string& piece : pieces) {
            const int copies = std::discrete_distribution<>({1, 8, 1})(random);
            for (int copy = 0; copy < copies; ++copy)
                reply += piece;
        }
    }
    return reply;
}

TEST(ReplySearchTest, FindsWhatTheLibraryFinds) {
    std::mt19937 random(20'240'117);
    int matches = 0;
    for (int round = 0; round < 4000; ++round) {
        const std::string reply = round % 2 == 0 ? RandomReply(random) : RandomPowerReply(random);
        SCOPED_TRACE(testing::PrintToString(reply));
        for (const std::string& pattern : {powerPattern, countryPattern, macPattern}) {
            const std::optional<std::string> expected = LibrarySearch(reply, pattern);
            matches += expected.has_value() ? 1 : 0;
            ASSERT_EQ(FindInReply(reply, pattern), expected) << pattern;
        }
    }
    EXPECT_GT(matches, 2000) << "too few of the replies match anything";
}

TEST(ReplySearchTest, LineOfMegabytesIsSearched) {
    const std::string filler(5'000'000, 'x');
    EXPECT_EQ(FindInReply(filler + power, powerPattern), "17.5");
    EXPECT_EQ(FindInReply(power + filler, powerPattern), "17.5");
    EXPECT_EQ(FindInReply("Target Power: " + filler + "Chain A (1) 17.5 dBm", powerPattern),
              "17.5");
}

std::string Megabyte(const std::string& text) {
    std::string repeated;
    while (repeated.size() < 1'000'000)
        repeated += text;
    return repeated;
}

TEST(ReplySearchTest, LineOfNothingButBeginningsIsSearchedInLinearTime) {
    EXPECT_EQ(FindInReply(Megabyte("Target Power: "), powerPattern), std::nullopt);
    EXPECT_EQ(FindInReply(Megabyte("Target Power: Chain A (1) 1 "), powerPattern), std::nullopt);
    EXPECT_EQ(FindInReply(Megabyte("Target Power: Chain B (2) 1 dBm "), powerPattern),
              std::nullopt);
    EXPECT_EQ(FindInReply(Megabyte("Current MCC: -"), countryPattern), std::nullopt);
}

TEST(ReplySearchTest, NumberOfAMegabyteIsFound) {
    const std::string digits = Megabyte("1");
    EXPECT_TRUE(FindInReply("Mac Type: " + digits, macPattern) == digits);
    EXPECT_TRUE(FindInReply("Target Power: Chain A (1) " + digits + " dBm", powerPattern) ==
                digits);
    EXPECT_EQ(FindInReply("Target Power: Chain A (1) " + digits, powerPattern), std::nullopt);
}

} // namespace

} // namespace PowerTest
