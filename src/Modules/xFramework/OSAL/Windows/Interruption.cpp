#include "Modules/xFramework/OSAL/Interruption.h"

#include <windows.h>

#include <atomic>

namespace OSAL {

namespace {

std::atomic<bool> isWanted = false;
int heldCount = 0;

BOOL WINAPI Note(DWORD event) {
    // The second one ends the program.
    if (isWanted.exchange(true))
        return FALSE;
    // When the console closes, the system ends the program as soon as this returns.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
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

} // namespace OSAL
