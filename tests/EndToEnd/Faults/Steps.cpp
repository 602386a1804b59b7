#include "tests/EndToEnd/Faults/Steps.h"

#include <thread>

namespace EndToEnd::Faults {

Step TakeRequest() {
    return [](const Stage& stage) { stage.taken += stage.connection.ReadRequest(); };
}

Step Take(std::size_t size) {
    return [size](const Stage& stage) { stage.taken += stage.connection.Read(size); };
}

Step AwaitRequest(std::size_t size) {
    return
        [size](const Stage& stage) { stage.connection.WaitForArrival(size - stage.taken.size()); };
}

Step Send(const std::string& bytes) {
    return [bytes](const Stage& stage) { stage.connection.Send(bytes); };
}

Step SendApart(const std::string& bytes) {
    return [bytes](const Stage& stage) { stage.connection.SendApart(bytes); };
}

Step Drip(const std::string& bytes) {
    return [bytes](const Stage& stage) {
        for (const char byte : bytes)
            stage.connection.SendApart(std::string(1, byte));
    };
}

Step AwaitTaken() {
    return [](const Stage& stage) { stage.connection.WaitUntilTaken(); };
}

Step FinishSending() {
    return [](const Stage& stage) { stage.connection.FinishSending(); };
}

Step Close() {
    return [](const Stage& stage) { stage.connection.Close(); };
}

Step Reset() {
    return [](const Stage& stage) { stage.connection.Reset(); };
}

Step Silence(std::chrono::milliseconds duration) {
    return [duration](const Stage&) { std::this_thread::sleep_for(duration); };
}

Step StopListening() {
    return [](const Stage& stage) { stage.peer.StopListening(); };
}

Step ListenAgain() {
    return [](const Stage& stage) { stage.peer.ListenAgain(); };
}

} // namespace EndToEnd::Faults
