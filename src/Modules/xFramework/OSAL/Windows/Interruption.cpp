#include "Modules/xFramework/OSAL/Interruption.h"

#include <windows.h>

#include <atomic>
#include <mutex>
#include <utility>

namespace OSAL {

namespace {

std::atomic<bool> isWanted = false;
int heldCount = 0;
std::atomic<bool> isListening = false;

bool IsClosing(DWORD event) {
    return event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT;
}

BOOL WINAPI Note(DWORD event) {
    // The system asks the handler that was set last first.
    if (isListening)
        return FALSE;
    // The second one ends the program.
    if (isWanted.exchange(true))
        return FALSE;
    // When the console closes, the system ends the program as soon as this returns.
    if (IsClosing(event))
        ::Sleep(INFINITE);
    return TRUE;
}

} // namespace

HeldInterruption::HeldInterruption() {
    if (heldCount++ == 0)
        ::SetConsoleCtrlHandler(&Note, TRUE);
}

HeldInterruption::~HeldInterruption() {
    if (--heldCount > 0)
        return;
    if (IsWanted())
        ::ExitProcess(static_cast<UINT>(STATUS_CONTROL_C_EXIT));
    ::SetConsoleCtrlHandler(&Note, FALSE);
}

bool HeldInterruption::IsWanted() {
    return isWanted;
}

namespace {

/// Guards the function against its end while the system's thread calls it.
std::mutex functionMutex;
InterruptionListener::Function listeningFunction;

BOOL WINAPI Tell(DWORD event) {
    {
        const std::lock_guard lock(functionMutex);
        if (!listeningFunction)
            return FALSE;
        listeningFunction(IsClosing(event) ? InterruptionKind::ConsoleClosing
                                           : InterruptionKind::Interrupt);
    }
    // When the console closes, the system ends the program as soon as this returns.
    if (IsClosing(event))
        ::Sleep(INFINITE);
    return TRUE;
}

} // namespace

struct InterruptionListener::System {};

InterruptionListener::InterruptionListener(Function function) {
    {
        const std::lock_guard lock(functionMutex);
        listeningFunction = std::move(function);
    }
    isListening = true;
    ::SetConsoleCtrlHandler(&Tell, TRUE);
}

InterruptionListener::~InterruptionListener() {
    ::SetConsoleCtrlHandler(&Tell, FALSE);
    isListening = false;
    const std::lock_guard lock(functionMutex);
    listeningFunction = nullptr;
}

} // namespace OSAL
