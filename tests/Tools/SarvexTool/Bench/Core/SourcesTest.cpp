#include "Tools/SarvexTool/Bench/Core/Sources.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace Bench {
namespace {

using testing::ElementsAre;
using testing::Optional;

Source Of(LineNumber first, LineNumber last, const std::optional<std::string>& bench,
          std::optional<std::uint32_t> attempt = std::nullopt) {
    return {{first, last}, {bench, std::nullopt, attempt}};
}

TEST(SourcesTest, PlaceIsThatOfTheSourceThatHasTheLine) {
    const Sources sources({Of(2, 4, "one"), Of(5, 5, "two"), Of(8, 9, "three")});
    const auto benchOf = [&sources](LineNumber line) {
        const RunPlace* const place = sources.PlaceOf(line);
        return place == nullptr ? "-" : *place->bench;
    };
    EXPECT_EQ(benchOf(1), "-");
    EXPECT_EQ(benchOf(2), "one");
    EXPECT_EQ(benchOf(4), "one");
    EXPECT_EQ(benchOf(5), "two");
    EXPECT_EQ(benchOf(6), "-");
    EXPECT_EQ(benchOf(8), "three");
    EXPECT_EQ(benchOf(9), "three");
    EXPECT_EQ(benchOf(10), "-");
    EXPECT_EQ(Sources().PlaceOf(2), nullptr);
}

TEST(SourcesTest, LinesThatAreInNoOrderAreRefused) {
    EXPECT_THROW(Sources({Of(2, 4, "a"), Of(4, 5, "b")}), std::invalid_argument);
    EXPECT_THROW(Sources({Of(5, 6, "a"), Of(2, 3, "b")}), std::invalid_argument);
    EXPECT_THROW(Sources({Of(3, 2, "a")}), std::invalid_argument);
    EXPECT_THROW(Sources({Of(0, 2, "a")}), std::invalid_argument);
}

TEST(SourcesTest, PartHasItsNameAndIsFoundByIt) {
    for (const auto& [part, name] : {std::pair(PlacePart::Bench, "bench"),
                                     {PlacePart::Device, "device"},
                                     {PlacePart::Attempt, "attempt"}}) {
        EXPECT_STREQ(NameOf(part), name);
        EXPECT_EQ(PlacePartNamed(name), part);
    }
    EXPECT_EQ(PlacePartNamed("Bench"), std::nullopt);
    EXPECT_EQ(PlacePartNamed(""), std::nullopt);
}

TEST(SourcesTest, APartIsToldWhereOneSourceTellsIt) {
    const Sources sources({Of(2, 2, std::nullopt), Of(3, 3, "one")});
    EXPECT_TRUE(AreTold(sources, PlacePart::Bench));
    EXPECT_FALSE(AreTold(sources, PlacePart::Device));
    EXPECT_FALSE(AreTold(Sources(), PlacePart::Bench));
}

TEST(SourcesTest, TheWantedPartIsShownWhereItIsTold) {
    const Sources sources({Of(2, 2, "one", 1)});
    EXPECT_EQ(ToldPart(sources, PlacePart::Attempt), PlacePart::Attempt);
    EXPECT_EQ(ToldPart(sources, PlacePart::Device), PlacePart::Bench);
    EXPECT_EQ(ToldPart(sources, std::nullopt), PlacePart::Bench);
    EXPECT_EQ(ToldPart(Sources({Of(2, 2, std::nullopt, 1)}), std::nullopt), PlacePart::Attempt);
    EXPECT_EQ(ToldPart(Sources(), PlacePart::Bench), std::nullopt);
}

TEST(SourcesTest, NamesAreInTheOrderOfTheirNumbers) {
    const std::vector<std::string> names = {"",         "2",       "10",       "bench",
                                            "bench1",   "bench1a", "bench2",   "bench9-10",
                                            "bench9-9", "bench10", "bench 99", "bencha"};
    std::vector<std::string> sorted = names;
    std::sort(sorted.begin(), sorted.end(), [](const auto& left, const auto& right) {
        return CountingKey(left) < CountingKey(right);
    });
    EXPECT_THAT(sorted, ElementsAre("", "2", "10", "bench", "bench 99", "bench1", "bench1a",
                                    "bench2", "bench9-9", "bench9-10", "bench10", "bencha"));
    EXPECT_EQ(CountingKey("bench007"), CountingKey("bench7"));
    EXPECT_LT(CountingKey("bench00"), CountingKey("bench1"));
}

TEST(LineGroupsTest, NamesThatCountAlikeAreGroupsOfTheirOwn) {
    const Sources sources({Of(2, 2, "bench10"), Of(3, 3, "bench9"), Of(4, 4, "bench09")});
    EXPECT_THAT(LineGroups(sources, PlacePart::Bench).Names(),
                ElementsAre(std::nullopt, Optional(std::string("bench09")),
                            Optional(std::string("bench9")), Optional(std::string("bench10"))));
}

TEST(LineGroupsTest, SourcesOfOneNameAreOneGroup) {
    const Sources sources({Of(2, 3, "b"), Of(4, 5, "a"), Of(6, 7, "b"), Of(8, 9, std::nullopt)});
    const LineGroups groups(sources, PlacePart::Bench);
    EXPECT_THAT(groups.Names(),
                ElementsAre(std::nullopt, Optional(std::string("a")), Optional(std::string("b"))));
    EXPECT_EQ(groups.GroupOf(2), 2u);
    EXPECT_EQ(groups.GroupOf(5), 1u);
    EXPECT_EQ(groups.GroupOf(7), 2u);
    EXPECT_EQ(groups.GroupOf(9), 0u) << "of a source without a name";
    EXPECT_EQ(groups.GroupOf(10), 0u) << "of no source";
}

TEST(LineGroupsTest, AttemptsAreInTheOrderOfTheirNumbers) {
    const Sources sources({Of(2, 2, "a", 10), Of(3, 3, "a", 9), Of(4, 4, "b", 10)});
    const LineGroups groups(sources, PlacePart::Attempt);
    EXPECT_THAT(groups.Names(),
                ElementsAre(std::nullopt, Optional(std::string("9")), Optional(std::string("10"))));
    EXPECT_EQ(groups.GroupOf(2), 2u);
    EXPECT_EQ(groups.GroupOf(3), 1u);
    EXPECT_EQ(groups.GroupOf(4), 2u);
}

TEST(LineGroupsTest, AnEmptyNameIsAName) {
    const Sources sources({Of(2, 2, ""), Of(3, 3, std::nullopt)});
    const LineGroups groups(sources, PlacePart::Bench);
    EXPECT_THAT(groups.Names(), ElementsAre(std::nullopt, Optional(std::string())));
    EXPECT_EQ(groups.GroupOf(2), 1u);
    EXPECT_EQ(groups.GroupOf(3), 0u);
}

} // namespace
} // namespace Bench
