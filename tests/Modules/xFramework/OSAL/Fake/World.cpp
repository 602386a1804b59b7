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

int CountCalls(const std::string& call) {
    const auto& calls = TheWorld().calls;
    return static_cast<int>(std::count_if(calls.begin(), calls.end(), [&](const auto& recorded) {
        return recorded == call || recorded.starts_with(call + ' ');
    }));
}

} // namespace OSAL::Fake
