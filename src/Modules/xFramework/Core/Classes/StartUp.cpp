#include "Modules/xFramework/Core/Classes/StartUpRegistration.h"

// Before main. Every singleton that the registration uses is created by its first use, so that it
// does not matter in which order the program's static objects are made.
//
// The name is for links from the SDK's archive, which ask for it (cmake/Sdk.cmake): nothing else
// refers to this file, and a linker takes from an archive only what is asked for.
extern "C" {
extern const bool SarvexToolStartUp;
const bool SarvexToolStartUp = [] {
    Core::RegisterAtStartUp();
    return true;
}();
}
