#include "Modules/xFramework/OSAL/DebugOutput.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace OSAL {
namespace {

/// What a debugger would have seen.
std::vector<std::string>& DebuggerMessages() {
    static std::vector<std::string> messages;
    return messages;
}

/// The system tells a debugger of a message by an exception that carries length and text.
LONG CALLBACK NoteMessage(EXCEPTION_POINTERS* pointers) {
    constexpr DWORD debugMessage = 0x40010006;
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    if (record.ExceptionCode != debugMessage)
        return EXCEPTION_CONTINUE_SEARCH;
    DebuggerMessages().emplace_back(reinterpret_cast<const char*>(record.ExceptionInformation[1]));
    return EXCEPTION_CONTINUE_EXECUTION;
}

TEST(DebugOutputTest, GoesToTheDebuggerAsItIs) {
    void* const handler = ::AddVectoredExceptionHandler(1, &NoteMessage);
    OutputDebugStringA("[OEMINFO] | 100 %s %n\n");
    ::RemoveVectoredExceptionHandler(handler);
    EXPECT_THAT(DebuggerMessages(), testing::ElementsAre("[OEMINFO] | 100 %s %n\n"));
}

} // namespace
} // namespace OSAL
