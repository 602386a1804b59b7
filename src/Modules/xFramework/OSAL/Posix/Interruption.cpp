#include "Modules/xFramework/OSAL/Interruption.h"

#include <array>
#include <csignal>

namespace OSAL {

namespace {

constexpr std::array<int, 3> endingSignals{SIGHUP, SIGINT, SIGTERM};

volatile std::sig_atomic_t wantedSignal = 0;
int heldCount = 0;

using Handler = void (*)(int);

/// A signal that is ignored, or has a handler of its own, is left alone.
// cppcheck-suppress constParameter ; a function cannot be const
void Replace(Handler from, Handler to) {
    for (const int signal : endingSignals) {
        struct sigaction action {};
        if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler != from)
            continue;
        action.sa_handler = to;
        // The second one ends the program.
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        ::sigaction(signal, &action, nullptr);
    }
}

void Note(int signal) {
    wantedSignal = signal;
}

} // namespace

HeldInterruption::HeldInterruption() {
    if (heldCount++ == 0)
        Replace(SIG_DFL, &Note);
}

HeldInterruption::~HeldInterruption() {
    if (--heldCount > 0)
        return;
    Replace(&Note, SIG_DFL);
    if (IsWanted())
        static_cast<void>(::raise(wantedSignal));
}

bool HeldInterruption::IsWanted() {
    return wantedSignal != 0;
}

} // namespace OSAL
