#include "Modules/xFramework/Core/Classes/StartUpRegistration.h"

namespace {

// Before main. Every singleton that the registration uses is created by its first use, so that it
// does not matter in which order the program's static objects are made.
[[maybe_unused]] const bool isRegistered = [] {
    Core::RegisterAtStartUp();
    return true;
}();

} // namespace
