#pragma once

#include "Modules/xFramework/Core/Classes/IInterface.h"

#include <cstdint>

namespace Core {

/// An object that counts its holders, for what may be entered in several containers at once.
class IReferenceableObject : public virtual IInterface {
public:
    /// Adds a holder; returns the new count.
    virtual std::int32_t AddRef() = 0;

    /// Takes a holder off; returns the new count. Never deletes: who gets 0 deletes the object.
    virtual std::int32_t Release() = 0;
};

} // namespace Core
