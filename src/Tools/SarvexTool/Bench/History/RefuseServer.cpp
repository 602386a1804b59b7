#include "Tools/SarvexTool/Bench/History/OpenServer.h"

namespace Bench {

std::unique_ptr<Database> OpenServer(const StoreName& name) {
    RequireServers(name);
    return nullptr;
}

void RequireServers(const StoreName& name) {
    throw StoreError(name.Shown(), "the program for Windows keeps its history in files only; a "
                                   "store on a server is for the program for Linux");
}

} // namespace Bench
