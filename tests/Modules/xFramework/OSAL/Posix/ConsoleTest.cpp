#include "Modules/xFramework/OSAL/Console.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>

namespace OSAL {
namespace {

/// Puts another file in the place of standard input while it lives.
class InputFrom {
public:
    explicit InputFrom(int descriptor) : m_old(::dup(STDIN_FILENO)) {
        ::dup2(descriptor, STDIN_FILENO);
    }
    ~InputFrom() {
        ::dup2(m_old, STDIN_FILENO);
        ::close(m_old);
    }
    InputFrom(const InputFrom&) = delete;
    InputFrom& operator=(const InputFrom&) = delete;

private:
    int m_old;
};

TEST(ConsoleTest, ArgumentsAreTakenAsTheyAre) {
    const std::array<const char*, 4> arguments{"program", "-x", "\xFF *", ""};
    EXPECT_EQ(ReadArguments(4, arguments.data()), (std::vector<std::string>{"-x", "\xFF *", ""}));
    EXPECT_TRUE(ReadArguments(1, arguments.data()).empty());
    EXPECT_TRUE(ReadArguments(0, arguments.data()).empty());
}

TEST(ConsoleTest, ATerminalIsToldFromOtherFiles) {
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    {
        const InputFrom input(terminal);
        EXPECT_TRUE(IsTerminal(StandardStream::Input));
    }
    ::close(terminal);
    const int null = ::open("/dev/null", O_RDONLY);
    {
        const InputFrom input(null);
        EXPECT_FALSE(IsTerminal(StandardStream::Input));
    }
    ::close(null);
}

TEST(ConsoleTest, TheWidthOfATerminalIsItsOwn) {
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    {
        const InputFrom input(terminal);
        EXPECT_EQ(TerminalWidth(StandardStream::Input), std::nullopt);
        for (const unsigned width : {132U, 40U}) {
            winsize size{};
            size.ws_col = static_cast<unsigned short>(width);
            ASSERT_EQ(::ioctl(terminal, TIOCSWINSZ, &size), 0);
            EXPECT_EQ(TerminalWidth(StandardStream::Input), width);
        }
    }
    ::close(terminal);
    const int null = ::open("/dev/null", O_RDONLY);
    {
        const InputFrom input(null);
        EXPECT_EQ(TerminalWidth(StandardStream::Input), std::nullopt);
    }
    ::close(null);
}

TEST(ConsoleTest, NamesInDifferentCaseAreDifferentFiles) {
    EXPECT_FALSE(AreSameFileName("a.csv", "A.csv"));
}

} // namespace
} // namespace OSAL
