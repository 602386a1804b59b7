#include "Modules/xFramework/OSAL/Console.h"

#include <gtest/gtest.h>

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

TEST(ConsoleTest, NamesInDifferentCaseAreTheSameFile) {
    EXPECT_TRUE(AreSameFileName("Ärger.CSV", "ärger.csv"));
    // The system drops dots and blanks at the end.
    EXPECT_TRUE(AreSameFileName("a.csv. ", "a.csv"));
}

} // namespace
} // namespace OSAL
