#pragma once

namespace Core {

/// Makes the framework ready for use: gives the element types their names in the value factory,
/// enters a service domain as "Services" in the root namespace, installs the provider that expands
/// $(name) references, and sets up the log's "stream" channel, which writes to the debugger output.
/// To be called once in a process. Programs do not call it: they link StartUp, which does so before
/// main.
void RegisterAtStartUp();

} // namespace Core
