#pragma once

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

} // namespace Core
