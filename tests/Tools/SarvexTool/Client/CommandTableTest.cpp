#include "Tools/SarvexTool/Client/CommandTable.h"

#include <gmock/gmock.h>

#include <sstream>

namespace SarvexTool {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

CommandTable Read(const std::string& text) {
    std::istringstream file(text);
    return ReadCommandTable(file);
}

std::list<Core::Value> Arguments(const std::vector<std::string>& texts) {
    std::list<Core::Value> arguments;
    for (const std::string& text : texts)
        arguments.emplace_back(text);
    return arguments;
}

TEST(CommandTableTest, LinesHoldANameAndACount) {
    EXPECT_THAT(Read("-exit 0\n-remote 1\n"), ElementsAre(Pair("-exit", 0), Pair("-remote", 1)));
    EXPECT_THAT(Read("-exit 0\n-remote 1"), ElementsAre(Pair("-exit", 0), Pair("-remote", 1)));
    EXPECT_THAT(Read(" \t-exit\t 2 and a remark\r\n"), ElementsAre(Pair("-exit", 2)));
    EXPECT_THAT(Read("-exit 1x\n"), ElementsAre(Pair("-exit", 1)));
    EXPECT_THAT(Read("-less -1\n-exit 0\n"), ElementsAre(Pair("-exit", 0), Pair("-less", -1)));
    EXPECT_THAT(Read(""), IsEmpty());
}

TEST(CommandTableTest, NamesBecomeLowerCaseAndTheFirstOfANameWins) {
    EXPECT_THAT(Read("-ExIT 1\n-exit 2\n-EXIT 3\n@AZ[ 4\n\xC4z 5\n"),
                ElementsAre(Pair("-exit", 1), Pair("@az[", 4), Pair("\xC4z", 5)));
}

TEST(CommandTableTest, OneMalformedLineEmptiesTheTable) {
    for (const std::string line :
         {"", " ", "\r", "-name", "-name x", "7", "-name 99999999999", "-name -99999999999"}) {
        SCOPED_TRACE(line);
        EXPECT_THAT(Read("-exit 0\n" + line + "\n-remote 1\n"), IsEmpty());
        EXPECT_THAT(Read(line + "\n-exit 0\n"), IsEmpty());
    }
}

TEST(CommandTableTest, EmptyLastLineIsNoLine) {
    EXPECT_THAT(Read("-exit 0\n"), ElementsAre(Pair("-exit", 0)));
    EXPECT_THAT(Read("-exit 0\n\n"), IsEmpty());
}

TEST(CommandTableTest, ArgumentsAreKnownWhenTheTableAccountsForAllOfThem) {
    const CommandTable table = Read("-exit 0\n-remote 1\n-three 3\n-huge 2147483647\n-less -1\n"
                                    "-least -2147483648\n-less 0\n");
    struct Case {
        std::vector<std::string> arguments;
        bool known;
    };
    const Case cases[] = {
        {{}, true},
        {{"-exit"}, true},
        {{"-remote", "10.1.1.1", "-exit"}, true},
        {{"-exit", "-remote", "10.1.1.1"}, true},
        {{"-Exit"}, false},
        {{"-EXIT"}, false},
        {{"-remote"}, true},
        {{"-exit", "-remote"}, true},
        {{"-remote", "-exit"}, true},
        {{"-three", "a", "b"}, true},
        {{"-three", "a", "b", "c"}, true},
        {{"-three", "a", "b", "c", "d"}, false},
        {{"-huge", "a"}, true},
        {{"-less"}, false},
        {{"-least"}, false},
        {{"-exit", "-less", "-exit"}, false},
        {{"-remote", "-less", "-exit"}, true},
        {{"-unknown"}, false},
        {{"-exit", "-unknown"}, false},
        {{"-exit "}, false},
        {{""}, false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        EXPECT_EQ(AreAllKnown(Arguments(row.arguments), table), row.known);
    }
}

TEST(CommandTableTest, EmptyTableKnowsNoArgument) {
    EXPECT_FALSE(AreAllKnown(Arguments({"-exit"}), {}));
    EXPECT_TRUE(AreAllKnown({}, {}));
}

} // namespace

} // namespace SarvexTool
