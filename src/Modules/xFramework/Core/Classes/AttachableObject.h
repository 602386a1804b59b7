#pragma once

#include "Modules/xFramework/Core/Classes/INamespace.h"

namespace Core {

/// An object that is told which namespace it is entered in. One that is entered several times knows
/// the last namespace only.
class IAttachableObject : public virtual IInterface {
public:
    /// Entered in owner, which stays the caller's.
    virtual void Attach(INamespace* owner) = 0;

    /// Taken out of owner. Nothing happens when the object has been entered elsewhere since.
    virtual void Detach(INamespace* owner) = 0;

    /// The namespace that the object was entered in last, null when it has been taken out of that
    /// one since (others may still hold it) or has never been entered.
    virtual INamespace* GetOwner() const = 0;
};

/// The owner is only observed: a namespace takes its name out of what it releases.
class AttachableObject : public virtual IAttachableObject {
public:
    void Attach(INamespace* owner) override { m_owner = owner; }
    void Detach(INamespace* owner) override {
        if (m_owner == owner)
            m_owner = nullptr;
    }
    INamespace* GetOwner() const override { return m_owner; }

private:
    INamespace* m_owner = nullptr;
};

} // namespace Core
