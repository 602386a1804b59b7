#include "tests/Modules/xFramework/OSAL/Fake/World.h"

#include <algorithm>

namespace OSAL::Fake {

World& TheWorld() {
    static World world;
    return world;
}

void Reset() {
    TheWorld() = World{};
}

int CountCalls(const std::string& beginning) {
    const auto& calls = TheWorld().calls;
    return static_cast<int>(std::count_if(calls.begin(), calls.end(), [&](const auto& call) {
        return call.compare(0, beginning.size(), beginning) == 0;
    }));
}

} // namespace OSAL::Fake
