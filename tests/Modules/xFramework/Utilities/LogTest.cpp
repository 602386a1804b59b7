#include "Modules/xFramework/Utilities/Log.h"

#include "Modules/xFramework/Streams/debug_ostream.h"
#include "Modules/xFramework/SyncObjectsOSAL/CriticalSectionOSAL.h"
#include "Modules/xFramework/Utilities/BriefLogFormatter.h"
#include "Modules/xFramework/Utilities/Format.h"
#include "Modules/xFramework/Utilities/LogPrinter.h"
#include "Modules/xFramework/Utilities/Singleton.h"
#include "tests/Modules/xFramework/OSAL/Fake/World.h"
#include "tests/Modules/xFramework/Utilities/LogRecorder.h"

#include <gmock/gmock.h>

namespace Utilities {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(LogTest, LevelsAreBits) {
    EXPECT_EQ(LogLevel::Error, 1u);
    EXPECT_EQ(LogLevel::Warning, 2u);
    EXPECT_EQ(LogLevel::Info, 4u);
    EXPECT_EQ(LogLevel::Trace, 8u);
    EXPECT_EQ(LogLevel::All, 15u);
}

TEST(LogTest, SendsTheRecordToTheProcessWidePrinter) {
    LogRecorder log;
    Log(LogLevel::Warning, "file", 12, "function", Format("${1} dBm") % "17.5");
    EXPECT_THAT(log.records, ElementsAre("2|file|function|17.5 dBm"));
}

TEST(LogTest, IsLostWhenNobodyListens) {
    { const LogRecorder gone; }
    Log(LogLevel::Error, "file", 1, "function", "message");
    LogRecorder late;
    EXPECT_THAT(late.records, IsEmpty());
}

/// The channel "stream" as the program sets it up.
class LogToDebuggerTest : public testing::Test {
protected:
    LogToDebuggerTest() {
        OSAL::Fake::Reset();
        printer->AddDevice("stream", &device);
        printer->SetFormatter("stream", &formatter);
        printer->SetLevelMask("stream", LogLevel::All);
    }
    ~LogToDebuggerTest() override { printer->RemoveDevice("stream"); }

    SingletonWrapper<LogPrinter> printer;
    Streams::debug_ostream<> stream;
    StreamLogDevice device{&stream, new SyncObjectsOSAL::CriticalSectionOSAL};
    BriefLogFormatter formatter;
};

TEST_F(LogToDebuggerTest, SendsOneLineForARecord) {
    Log(LogLevel::Info, "file", 1, "DynamicTest::ProcessHeaderTestFile",
        "--------------------->Enter");
    EXPECT_THAT(OSAL::Fake::TheWorld().debugOutput,
                ElementsAre("[OEMINFO] | DynamicTest::ProcessHeaderTestFile       | "
                            "--------------------->Enter\n"));
}

TEST_F(LogToDebuggerTest, CutsAMessageWithLineBreaksIntoOneOutputForEachLine) {
    Log(LogLevel::Error, "file", 1, "f", "first\n\nsecond\n");
    EXPECT_THAT(
        OSAL::Fake::TheWorld().debugOutput,
        ElementsAre("[OEMERROR]| f                                        | first\n", "second\n"));
}

} // namespace
} // namespace Utilities
