#include "Modules/xFramework/Utilities/FunctionTrace.h"

#include "tests/Modules/xFramework/Utilities/LogRecorder.h"

#include <gmock/gmock.h>

#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

namespace Utilities {
namespace {

using testing::ElementsAre;

struct NameCase {
    std::string path;
    std::string name;
};

TEST(FunctionTraceSourceNameTest, IsThePathFromTheTreeOfSourcesWithoutExtension) {
    const std::vector<NameCase> cases{
        {"/home/bench.new/client/src/Tools/Vemo/DynamicTest.cpp", "src/Tools/Vemo/DynamicTest"},
        {"src/Tools/Vemo/DynamicTest.cpp", "src/Tools/Vemo/DynamicTest"},
        {"../../src/main.cpp", "src/main"},
        {"/usr/src/client/src/main.cpp", "src/main"},
        {"/home/mysrc/client/main.cpp", "/home/mysrc/client/main"},
        {"/home/bench.new/main", "/home/bench.new/main"},
        {"src/Tools/Makefile", "src/Tools/Makefile"},
        {"main.cpp", "main"},
        {"", ""}};
    for (const NameCase& each : cases) {
        SCOPED_TRACE(each.path);
        EXPECT_EQ(SourceName(each.path), each.name);
    }
}

/// The record as the recorder lists it, for a trace in this file.
std::string Enter(const std::string& function) {
    return "4|" + SourceName(__FILE__) + "|" + function + "|--------------------->Enter";
}

std::string Exit(const std::string& function) {
    return "4|" + SourceName(__FILE__) + "|" + function + "|<---------------------Exit";
}

class FunctionTraceTest : public testing::Test {
protected:
    LogRecorder log;
};

TEST_F(FunctionTraceTest, LogsEnterAndExitAtTheInfoLevel) {
    {
        const FunctionTrace trace("DynamicTest::SendCommands");
        EXPECT_THAT(log.records, ElementsAre(Enter("DynamicTest::SendCommands")));
    }
    EXPECT_THAT(log.records,
                ElementsAre(Enter("DynamicTest::SendCommands"), Exit("DynamicTest::SendCommands")));
}

TEST_F(FunctionTraceTest, LogsNoExitWhenAnExceptionEndsTheFunction) {
    try {
        const FunctionTrace trace("Outer");
        throw std::runtime_error("message");
    } catch (const std::exception&) {
        const FunctionTrace trace("Handler");
    }
    EXPECT_THAT(log.records, ElementsAre(Enter("Outer"), Enter("Handler"), Exit("Handler")));
}

/// Runs a traced function while an exception is on its way.
class TracedCleanup {
public:
    ~TracedCleanup() { const FunctionTrace trace("Cleanup"); }
};

TEST_F(FunctionTraceTest, LogsExitOfAFunctionThatEndsNormallyDuringCleanup) {
    try {
        const TracedCleanup cleanup;
        throw std::runtime_error("message");
    } catch (const std::exception&) {
    }
    EXPECT_THAT(log.records, ElementsAre(Enter("Cleanup"), Exit("Cleanup")));
}

TEST_F(FunctionTraceTest, NestsLikeTheFunctionsThatItTraces) {
    {
        const FunctionTrace outer("Outer");
        const FunctionTrace inner("Inner");
    }
    EXPECT_THAT(log.records,
                ElementsAre(Enter("Outer"), Enter("Inner"), Exit("Inner"), Exit("Outer")));
}

} // namespace
} // namespace Utilities
