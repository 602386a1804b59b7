#include "Modules/xFramework/OSAL/Interruption.h"

#include "Modules/xFramework/OSAL/Handle.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <thread>
#include <utility>

namespace OSAL {

namespace {

constexpr std::array<int, 4> endingSignals{SIGHUP, SIGINT, SIGQUIT, SIGTERM};

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

namespace {

/// Where the handler writes what it hears of; a handler can do little else.
std::atomic<int> noticeDescriptor = -1;

/// What is written when there is nothing more to hear; no signal has this number.
constexpr char lastNotice = 0;

void WriteNotice(char notice) {
    const int error = errno;
    // The pipe has room for thousands; who does not read those may miss one.
    static_cast<void>(::write(noticeDescriptor, &notice, 1) == 1);
    errno = error;
}

void Tell(int signal) {
    WriteNotice(static_cast<char>(signal));
}

using Actions = std::array<struct sigaction, endingSignals.size()>;

/// Sets the handler where the signal is not ignored; returns what was there before.
Actions ListenToSignals() {
    Actions before{};
    for (std::size_t index = 0; index < endingSignals.size(); ++index) {
        if (::sigaction(endingSignals[index], nullptr, &before[index]) != 0 ||
            before[index].sa_handler == SIG_IGN)
            continue;
        struct sigaction action {};
        action.sa_handler = &Tell;
        action.sa_flags = SA_RESTART;
        ::sigaction(endingSignals[index], &action, nullptr);
    }
    return before;
}

} // namespace

struct InterruptionListener::System {
    explicit System(Function given) : function(std::move(given)) {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
            throw std::system_error(errno, std::generic_category(), "a pipe for signals");
        readEnd = OwnedHandle(static_cast<Handle>(ends[0]));
        writeEnd = OwnedHandle(static_cast<Handle>(ends[1]));
        ::fcntl(ends[1], F_SETFL, O_NONBLOCK);
        noticeDescriptor = ends[1];
        thread = std::thread([this] { Listen(); });
        before = ListenToSignals();
    }

    void Listen() const {
        bool wasHungUp = false;
        char notice = lastNotice;
        for (;;) {
            const ssize_t size = ::read(static_cast<int>(readEnd.Get()), &notice, 1);
            if (size < 0 && errno == EINTR)
                continue;
            if (size != 1 || notice == lastNotice)
                return;
            if (notice != SIGHUP || !std::exchange(wasHungUp, true))
                function(InterruptionKind::Interrupt);
        }
    }

    Function function;
    OwnedHandle readEnd;
    OwnedHandle writeEnd;
    std::thread thread;
    Actions before{};
};

InterruptionListener::InterruptionListener(Function function)
    : m_pSystem(std::make_unique<System>(std::move(function))) {}

InterruptionListener::~InterruptionListener() {
    for (std::size_t index = 0; index < endingSignals.size(); ++index)
        ::sigaction(endingSignals[index], &m_pSystem->before[index], nullptr);
    WriteNotice(lastNotice);
    m_pSystem->thread.join();
    noticeDescriptor = -1;
}

} // namespace OSAL
