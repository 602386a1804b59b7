#include "Modules/xFramework/OSAL/Console.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cstdio>

namespace OSAL {
namespace {

TEST(ConsoleTest, ArgumentsAreThoseOfTheProcess) {
    // GoogleTest has been started with whatever options; no caller's list takes their place.
    const char* const other = "program";
    EXPECT_EQ(ReadArguments(1, &other), ReadArguments(0, nullptr));
}

TEST(ConsoleTest, BytesPassTheStandardStreamsUnchanged) {
    const int old = ::_setmode(::_fileno(stdin), _O_TEXT);
    {
        const PreparedConsole console;
        EXPECT_EQ(::_setmode(::_fileno(stdin), _O_BINARY), _O_BINARY);
    }
    ::_setmode(::_fileno(stdin), old);
    ::_setmode(::_fileno(stdout), _O_TEXT);
    ::_setmode(::_fileno(stderr), _O_TEXT);
}

/// Puts another handle in the place of standard output while it lives, and closes it then.
class OutputTo {
public:
    explicit OutputTo(HANDLE handle) : m_handle(handle), m_old(::GetStdHandle(STD_OUTPUT_HANDLE)) {
        ::SetStdHandle(STD_OUTPUT_HANDLE, m_handle);
    }
    ~OutputTo() {
        ::SetStdHandle(STD_OUTPUT_HANDLE, m_old);
        ::CloseHandle(m_handle);
    }
    OutputTo(const OutputTo&) = delete;
    OutputTo& operator=(const OutputTo&) = delete;

private:
    HANDLE m_handle;
    HANDLE m_old;
};

TEST(ConsoleTest, TheWidthOfAConsoleIsThatOfItsWindow) {
    const HANDLE buffer = ::CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                                      CONSOLE_TEXTMODE_BUFFER, nullptr);
    if (buffer == INVALID_HANDLE_VALUE)
        GTEST_SKIP() << "the tests were started without a console";
    const OutputTo output(buffer);
    CONSOLE_SCREEN_BUFFER_INFO information{};
    ASSERT_TRUE(::GetConsoleScreenBufferInfo(buffer, &information));
    EXPECT_EQ(TerminalWidth(StandardStream::Output),
              information.srWindow.Right - information.srWindow.Left + 1);
}

TEST(ConsoleTest, WhatIsNoConsoleHasNoWidth) {
    const OutputTo output(
        ::CreateFileW(L"NUL", GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_EQ(TerminalWidth(StandardStream::Output), std::nullopt);
}

TEST(ConsoleTest, NamesInDifferentCaseAreTheSameFile) {
    EXPECT_TRUE(AreSameFileName("Ärger.CSV", "ärger.csv"));
    // The system drops dots and blanks at the end.
    EXPECT_TRUE(AreSameFileName("a.csv. ", "a.csv"));
}

} // namespace
} // namespace OSAL
