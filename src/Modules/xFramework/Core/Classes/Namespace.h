#pragma once

#include "Modules/xFramework/Core/Classes/ANamespace.h"
#include "Modules/xFramework/Core/Classes/AttachableObject.h"

namespace Core {

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

    /// See IDynamicNamespace. pObject must not be null; it is released when this throws. Nothing
    /// happens when the object is under the name already.
    void Add(const std::string& name, IInterface* pObject) override;
    bool Remove(const std::string& name) override;

    /// As Find, for a name that is part of a longer text.
    using ANamespace::FindEntry;
};

/// The namespace where $(name) references are looked up; its members of type Core::Value are the
/// variables. Created by the first call and never destroyed.
Namespace& GlobalVariables();

} // namespace Core
