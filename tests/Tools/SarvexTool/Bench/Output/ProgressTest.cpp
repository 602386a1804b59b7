#include "Tools/SarvexTool/Bench/Output/Progress.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Bench {
namespace {

using namespace std::chrono_literals;
using Kind = RunState::Kind;

/// What was written since the last call.
std::string Take(std::ostringstream& stream) {
    const std::string text = stream.str();
    stream.str("");
    return text;
}

class TerminalProgressTest : public testing::Test {
protected:
    void Update(std::chrono::milliseconds now) {
        m_writer.Update(m_progress, IProgress::TimePoint(now));
    }
    std::string Written() { return Take(m_stream); }

    std::ostringstream m_stream;
    std::size_t m_width = 80;
    RunProgress m_progress;
    bool m_isWritten = true;
    TerminalProgress m_writer{m_stream, [this] { return m_width; }, [this] { return m_isWritten; }};
};

TEST_F(TerminalProgressTest, TheLineIsDrawnOverTheOneBefore) {
    m_progress.linesTotal = 100;
    m_writer.Begin(m_progress, IProgress::TimePoint(0ms));
    EXPECT_EQ(Written(), "\r0/100 (0 %), 0:00\r");
    m_progress.linesDone = 100;
    m_writer.FinishLine(m_progress, IProgress::TimePoint(1s));
    EXPECT_EQ(Written(), "\r100/100 (100 %), 0:00\r");
    m_progress.linesTotal = m_progress.linesDone = 9;
    Update(2s);
    EXPECT_EQ(Written(), "\r9/9 (100 %), 0:00    \r");
    Update(3s);
    EXPECT_EQ(Written(), "\r9/9 (100 %), 0:00\r");
}

TEST_F(TerminalProgressTest, ItIsDrawnAtMostTenTimesASecond) {
    int drawings = 0;
    for (int now = 0; now < 1000; ++now) {
        Update(std::chrono::milliseconds(now));
        drawings += Written().empty() ? 0 : 1;
    }
    EXPECT_EQ(drawings, 10);
}

TEST_F(TerminalProgressTest, WhatWasNotDrawnIsDrawnLater) {
    Update(0ms);
    m_progress.linesDone = m_progress.linesTotal = 7;
    Update(99ms);
    Written();
    Update(100ms);
    EXPECT_EQ(Written(), "\r7/7 (100 %), 0:00\r");
}

TEST_F(TerminalProgressTest, NothingIsDrawnUntilTheTerminalHasTakenWhatWasDrawn) {
    Update(0ms);
    Written();
    m_isWritten = false;
    m_progress.linesDone = m_progress.linesTotal = 6;
    Update(1s);
    Update(2s);
    EXPECT_EQ(Written(), "");
    m_isWritten = true;
    m_progress.linesDone = m_progress.linesTotal = 7;
    Update(2001ms);
    EXPECT_EQ(Written(), "\r7/7 (100 %), 0:00\r");
}

TEST_F(TerminalProgressTest, TheLastColumnStaysFree) {
    m_progress.line = 2;
    m_progress.settings = "Band 測試測試";
    Update(0ms);
    EXPECT_EQ(Written(), "\r0/0 (100 %), 0:00; line 2: Band 測試測試\r");
    m_width = 40;
    Update(1s);
    EXPECT_EQ(Written(), "\r0/0 (100 %), 0:00; line 2: Band 測試...\r");
    m_width = 10;
    Update(2s);
    EXPECT_EQ(Written(), "\r0/0 (1...\r");
    m_width = 1;
    Update(3s);
    EXPECT_EQ(Written(), "\r\r");
    m_width = 0;
    Update(4s);
    EXPECT_EQ(Written(), "\r\r");
}

TEST_F(TerminalProgressTest, ItMakesRoomForOtherText) {
    m_writer.MakeRoom();
    EXPECT_EQ(Written(), "");
    Update(0ms);
    Written();
    m_writer.MakeRoom();
    EXPECT_EQ(Written(), "\r" + std::string(17, ' ') + "\r");
    m_writer.MakeRoom();
    EXPECT_EQ(Written(), "");
    Update(100ms);
    EXPECT_EQ(Written(), "\r0/0 (100 %), 0:00\r");
    m_writer.End({});
    EXPECT_EQ(Written(), "\r" + std::string(17, ' ') + "\r");
}

class LineProgressTest : public testing::Test {
protected:
    void Update(std::chrono::milliseconds now) {
        m_writer.Update(m_progress, IProgress::TimePoint(now));
    }
    std::string Written() { return Take(m_stream); }

    std::ostringstream m_stream;
    RunProgress m_progress;
    LineProgress m_writer{m_stream};
};

TEST_F(LineProgressTest, ALineIsWrittenEvery30Seconds) {
    m_writer.Begin(m_progress, IProgress::TimePoint(0s));
    EXPECT_EQ(Written(), "0/0 (100 %), 0:00\n");
    Update(29'999ms);
    EXPECT_EQ(Written(), "");
    m_progress.linesDone = m_progress.linesTotal = 7;
    m_writer.FinishLine(m_progress, IProgress::TimePoint(30s));
    EXPECT_EQ(Written(), "7/7 (100 %), 0:00\n");
    Update(59s);
    EXPECT_EQ(Written(), "");
    Update(60s);
    EXPECT_EQ(Written(), "7/7 (100 %), 0:00\n");
    m_writer.MakeRoom();
    m_writer.End({});
    EXPECT_EQ(Written(), "");
}

TEST_F(LineProgressTest, AChangeOfTheStateIsToldAtOnce) {
    m_writer.Begin(m_progress, IProgress::TimePoint(0s));
    Written();
    m_progress.state = {Kind::WaitingForDaemon, 0, ""};
    Update(1s);
    EXPECT_EQ(Written(), "0/0 (100 %), 0:00, waiting for the daemon (0:00)\n");
    m_progress.state.seconds = 1;
    Update(2s);
    EXPECT_EQ(Written(), "");
    m_progress.state.detail = "refused";
    Update(3s);
    EXPECT_EQ(Written(), "0/0 (100 %), 0:00, waiting for the daemon (0:01): refused\n");
    Update(32s);
    EXPECT_EQ(Written(), "");
    m_progress.state = {};
    Update(32s);
    EXPECT_EQ(Written(), "0/0 (100 %), 0:00\n");
}

TEST_F(LineProgressTest, ARunThatBeginsInAnotherStateIsToldOnce) {
    m_progress.state = {Kind::WaitingForDaemon, 0, ""};
    m_writer.Begin(m_progress, IProgress::TimePoint(0s));
    Written();
    Update(1s);
    EXPECT_EQ(Written(), "");
}

} // namespace
} // namespace Bench
