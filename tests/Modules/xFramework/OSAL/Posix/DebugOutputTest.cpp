#include "Modules/xFramework/OSAL/DebugOutput.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

namespace {

/// What reached the system log, as "priority: text".
std::vector<std::string>& SystemLog() {
    static std::vector<std::string> records;
    return records;
}

[[gnu::format(printf, 2, 0)]] void Record(int priority, const char* format, va_list arguments) {
    std::array<char, 256> text{};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    SystemLog().push_back(std::to_string(priority) + ": " + text.data());
}

bool systemLogListens = true;

} // namespace

// These take the place of the C library's own functions; optimised builds call the second one.

extern "C" [[gnu::format(printf, 2, 3)]] void syslog(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Record(priority, format, arguments);
    va_end(arguments);
}

extern "C" [[gnu::format(printf, 3, 4)]] void __syslog_chk(int priority, int, const char* format,
                                                           ...) {
    va_list arguments;
    va_start(arguments, format);
    Record(priority, format, arguments);
    va_end(arguments);
}

extern "C" int access(const char* path, int) noexcept {
    return std::string(path) == "/dev/log" && systemLogListens ? 0 : -1;
}

namespace OSAL {
namespace {

TEST(DebugOutputTest, GoesToTheSystemLogAtDebugPriorityAsItIs) {
    SystemLog().clear();
    OutputDebugStringA("[OEMINFO] | 100 %s %n\n");
    // Facility user (1 << 3) and priority debug (7).
    EXPECT_THAT(SystemLog(), testing::ElementsAre("15: [OEMINFO] | 100 %s %n\n"));
}

TEST(DebugOutputTest, IsDroppedWhereNoSystemLogListens) {
    SystemLog().clear();
    systemLogListens = false;
    OutputDebugStringA("nobody hears this\n");
    systemLogListens = true;
    EXPECT_THAT(SystemLog(), testing::IsEmpty());
}

} // namespace
} // namespace OSAL
