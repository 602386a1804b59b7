#include "Tools/SarvexTool/Bench/History/OpenServer.h"

#include "Tools/SarvexTool/Bench/History/PostgresDatabase.h"

namespace Bench {

std::unique_ptr<Database> OpenServer(const StoreName& name) {
    return std::make_unique<PostgresDatabase>(name);
}

void RequireServers(const StoreName& /*name*/) {}

} // namespace Bench
