#pragma once

// Public, stable within a major version. One thread at a time. Nothing here throws.

#include <cstdint>

namespace Utilities {

/// Root of all framework objects: whoever owns one can delete it through this base.
class IObject {
public:
    virtual ~IObject() = default;

protected:
    IObject() = default;
    IObject(const IObject&) = default;
    IObject& operator=(const IObject&) = default;
};

} // namespace Utilities

namespace Core {

/// Root of the object framework's interfaces. Interfaces derive from each other virtually, so that
/// an object that offers several has one IInterface. What an object offers is asked with
/// dynamic_cast.
class IInterface : public virtual Utilities::IObject {};

/// An object that counts its holders, for what may be entered in several containers at once.
class IReferenceableObject : public virtual IInterface {
public:
    /// Adds a holder; returns the new count.
    virtual std::int32_t AddRef() = 0;

    /// Takes a holder off; returns the new count. Never deletes: who gets 0 deletes the object.
    virtual std::int32_t Release() = 0;
};

} // namespace Core
