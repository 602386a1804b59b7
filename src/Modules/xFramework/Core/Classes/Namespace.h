#pragma once

// Public, stable within a major version. One thread at a time; GlobalVariables may be called first
// by any thread. A namespace owns what is added to it. Throws std::bad_alloc, and what an object
// throws when it is attached; an assertion that fails is raised as Utilities::Exception*.

#include "Modules/xFramework/Core/Classes/ANamespace.h"
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

/// A namespace that holds its entries. The root namespace is Utilities::Singleton<Core::Namespace>.
///
/// An object that counts its holders (IReferenceableObject) gets the namespace as one more; any
/// other object becomes the namespace's own and must not be entered a second time. Entries are
/// released when they are replaced or removed, or with the namespace, in the order of their names.
class Namespace : public AttachableObject, public ANamespace, public virtual IDynamicNamespace {
public:
    Namespace() = default;
    ~Namespace() override;

    Namespace(const Namespace&) = delete;
    Namespace& operator=(const Namespace&) = delete;

    /// See IDynamicNamespace. Asserts that pObject is not null; it is released when this throws.
    /// Nothing happens when the object is under the name already.
    void Add(const std::string& name, IInterface* pObject) override;
    bool Remove(const std::string& name) override;

    /// As Find, for a name that is part of a longer text.
    using ANamespace::FindEntry;
};

/// The namespace where $(name) references are looked up; its members of type Core::Value are the
/// variables. Created by the first call and never destroyed.
Namespace& GlobalVariables();

} // namespace Core
