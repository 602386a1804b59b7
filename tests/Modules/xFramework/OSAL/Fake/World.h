#pragma once

#include "Modules/xFramework/OSAL/Console.h"
#include "Modules/xFramework/OSAL/File.h"
#include "Modules/xFramework/OSAL/Process.h"
#include "Modules/xFramework/OSAL/Socket.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

/// What the recording fake of the operating system shows to the code under test, and what that code
/// asked of it. A test fixture calls Reset first.
namespace OSAL::Fake {

/// A file as the link rule and the reading functions see it.
struct File {
    std::string content;
    PathKind kind = {.isToBeArchived = true};
    std::uint32_t hardLinks = 1;
    /// A link that leads nowhere cannot be, for example.
    bool canBeOpened = true;
};

struct World {
    /// Every call that a rule speaks of, in order and with its arguments: "Sleep 20", "send 512", …
    std::vector<std::string> calls;

    // Processes
    std::string modulePath = "/bench/SarvexToolClient";
    bool modulePathReadable = true;
    std::uint32_t lastError = 0;
    bool pipeOpens = true;
    std::string pipeOutput;
    bool childStarts = true;
    /// Called after each sleep was recorded.
    std::function<void()> onSleep = [] {};
    /// Called when the output of a command is read; may throw.
    std::function<void()> onReadPipe = [] {};

    // Variables of the environment, by name
    std::map<std::string, std::string> environment;

    // Interruption
    bool isEndWanted = false;
    int heldInterruptions = 0;

    // Console
    std::set<StandardStream> terminals;
    /// Of terminals that tell it.
    std::map<StandardStream, std::size_t> terminalWidths;

    // Files, by path
    std::map<std::string, File> files;

    // Sockets. Each step of a connection attempt asks its function whether it works; the argument
    // is the number of the attempt, from 0.
    std::function<bool(int)> startSucceeds = [](int) { return true; };
    std::function<bool(int)> resolveSucceeds = [](int) { return true; };
    std::function<bool(int)> createSucceeds = [](int) { return true; };
    std::function<bool(int)> reuseSucceeds = [](int) { return true; };
    std::function<bool(int)> connectSucceeds = [](int) { return true; };
    int attempts = 0;
    std::uint64_t mostOpenFiles = 1024;
    std::uint64_t mostPorts = 28232;
    SocketHandle nextSocket = 100;
    /// Everything that was sent, in order.
    std::string sent;
    /// The call to SendSocket with this number, from 0, fails; -1 for none.
    int failingSend = -1;
    int sends = 0;
    /// SendSocket takes at most so many bytes a call; -1 for no limit.
    int largestSend = -1;
    /// What ReceiveSocket gives, one piece a call; a piece longer than the caller's buffer is given
    /// in several. When none is left, the peer has closed (or the receive fails, as below).
    std::deque<std::string> received;
    bool receiveFailsAtEnd = false;
    /// Called before each receive; may throw.
    std::function<void()> onReceive = [] {};

    /// The debugger output, one entry a call.
    std::vector<std::string> debugOutput;

    // Locks that exist
    int criticalSections = 0;
    bool criticalSectionsCanBeCreated = true;
};

/// The one world of the test program.
World& TheWorld();

/// A world as new.
void Reset();

/// How many recorded calls are this one: its name whole, and as many of its arguments as are given,
/// each whole. "Close" counts no "CloseHandle 7", and "Sleep 20" no "Sleep 2000".
int CountCalls(const std::string& call);

} // namespace OSAL::Fake
