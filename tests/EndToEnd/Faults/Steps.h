#pragma once

#include "tests/EndToEnd/Support/ScriptedPeer.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

// What a peer does on a connection, step by step, so that a scenario reads as a list.

namespace EndToEnd::Faults {

/// Where a step takes place.
struct Stage {
    ScriptedPeer& peer;
    Connection& connection;
    /// All bytes that the peer has read on this connection.
    std::string& taken;
};

using Step = std::function<void(const Stage&)>;
using Script = std::vector<Step>;

/// Reads a whole request.
Step TakeRequest();
/// Reads so many bytes.
Step Take(std::size_t size);
/// Waits until so many bytes of the request have come, those included that were read before, and
/// reads none of them.
Step AwaitRequest(std::size_t size);

/// Sends the bytes at once.
Step Send(const std::string& bytes);
/// Sends the bytes when the client has taken those before, so that it receives them on their own.
Step SendApart(const std::string& bytes);
/// Sends each byte apart.
Step Drip(const std::string& bytes);
/// Waits until the client has taken everything.
Step AwaitTaken();

/// Ends the sending side.
Step FinishSending();
/// Closes in order, which becomes a reset where the client's bytes have not all been read.
Step Close();
Step Reset();
Step Silence(std::chrono::milliseconds duration);

/// Refuses every further connection.
Step StopListening();
Step ListenAgain();

} // namespace EndToEnd::Faults
