#include "Tools/SarvexTool/Bench/Core/ProblemList.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

constexpr ProblemKind error{Severity::Error, "errors"};
constexpr ProblemKind warning{Severity::Warning, "warnings"};

TEST(ProblemListTest, ProblemsAreInTheOrderOfTheirPlaces) {
    ProblemList list;
    list.Add(error, 3, 1, "third");
    list.Add(warning, 2, 2, "second");
    list.Add(error, 2, 0, "first");
    const std::vector<Problem> problems = list.InOrder();
    ASSERT_EQ(problems.size(), 3);
    EXPECT_EQ(problems[0].text, "first");
    EXPECT_EQ(problems[1].text, "second");
    EXPECT_EQ(problems[1].severity, Severity::Warning);
    EXPECT_EQ(problems[2].text, "third");
    EXPECT_EQ(list.Count(Severity::Error), 2);
    EXPECT_EQ(list.Count(Severity::Warning), 1);
    EXPECT_EQ(list.Count(error), 2);
}

TEST(ProblemListTest, ThoseThatAreNotNamedCanBeCounted) {
    ProblemList list;
    for (LineNumber line = 1; line <= ProblemList::MostOfAKind; ++line)
        list.Add(warning, line, 0, "text");
    list.AddCounted(warning, 0);
    EXPECT_EQ(list.InOrder().size(), ProblemList::MostOfAKind);
    list.AddCounted(warning, 3);
    EXPECT_EQ(list.InOrder().back().text, "and 3 more warnings");
    EXPECT_EQ(list.Count(warning), ProblemList::MostOfAKind + 3);
}

TEST(ProblemListTest, TooManyOfAKindAreCountedEachKindByItself) {
    ProblemList list;
    for (LineNumber line = 1; line <= ProblemList::MostOfAKind + 7; ++line)
        list.Add(error, line, 0, "text");
    for (LineNumber line = 1; line <= ProblemList::MostOfAKind; ++line)
        list.Add(warning, line, 0, "text");
    const std::vector<Problem> problems = list.InOrder();
    ASSERT_EQ(problems.size(), 2 * ProblemList::MostOfAKind + 1);
    EXPECT_EQ(problems.back().text, "and 7 more errors");
    EXPECT_EQ(problems.back().line, 0);
    EXPECT_EQ(problems.back().severity, Severity::Error);
    EXPECT_EQ(list.Count(Severity::Error), ProblemList::MostOfAKind + 7);
}

} // namespace
} // namespace Bench
