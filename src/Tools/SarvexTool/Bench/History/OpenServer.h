#pragma once

#include "Tools/SarvexTool/Bench/History/Database.h"

namespace Bench {

/// The store on a server; a program that cannot connect to one throws StoreError, which says so.
std::unique_ptr<Database> OpenServer(const StoreName& name);

/// Throws what OpenServer does in a program that cannot connect to any.
void RequireServers(const StoreName& name);

} // namespace Bench
