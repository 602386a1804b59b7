// What the compiler's stack protection needs of a run-time library. The one that comes with the
// compiler seeds its guard through the cryptography provider, which would make the client import
// another DLL and wait for it at every start. This one mixes what differs from start to start.

#include <windows.h>

#include <cstdint>
#include <initializer_list>

namespace {

std::uintptr_t NewGuard() {
    FILETIME time{};
    ::GetSystemTimeAsFileTime(&time);
    LARGE_INTEGER counter{};
    ::QueryPerformanceCounter(&counter);
    std::uintptr_t guard = reinterpret_cast<std::uintptr_t>(&counter);
    for (const std::uintptr_t part : {static_cast<std::uintptr_t>(time.dwLowDateTime),
                                      static_cast<std::uintptr_t>(counter.QuadPart),
                                      static_cast<std::uintptr_t>(::GetCurrentProcessId()) << 16,
                                      static_cast<std::uintptr_t>(::GetCurrentThreadId()) << 24,
                                      static_cast<std::uintptr_t>(::GetTickCount64()) << 32}) {
        // The multiplier of the 64-bit FNV hash spreads each part over the word.
        constexpr std::uintptr_t multiplier = 0x100000001B3;
        guard = (guard ^ part) * multiplier;
    }
    // A zero byte stops an overrun by a text function.
    return guard << 8;
}

} // namespace

extern "C" {

std::uintptr_t __stack_chk_guard = 0;

/// Called by a function that finds its guard overwritten.
[[noreturn]] void __stack_chk_fail() {
    ::OutputDebugStringA("stack overwritten\n");
    ::TerminateProcess(::GetCurrentProcess(), STATUS_STACK_BUFFER_OVERRUN);
    __builtin_unreachable();
}
}

namespace {

/// Runs before every other initialiser, and must not be guarded itself: the guard changes under it.
__attribute__((constructor(101), optimize("no-stack-protector"))) void SetGuard() {
    __stack_chk_guard = NewGuard();
}

} // namespace
