#include "Modules/xFramework/Core/Classes/Namespace.h"

#include "Modules/xFramework/Core/Classes/IInterface.h"
#include "Modules/xFramework/Utilities/Exception.h"

namespace Core {

namespace {

struct Releaser {
    void operator()(IInterface* pObject) const {
        auto* const counted = dynamic_cast<IReferenceableObject*>(pObject);
        if (counted == nullptr || counted->Release() == 0)
            delete pObject;
    }
};

/// One holder's share of an object.
using HeldObject = std::unique_ptr<IInterface, Releaser>;

HeldObject Hold(IInterface* pObject) {
    if (auto* const counted = dynamic_cast<IReferenceableObject*>(pObject))
        counted->AddRef();
    return HeldObject(pObject);
}

void AttachTo(INamespace* owner, IInterface* object) {
    if (auto* const attachable = dynamic_cast<IAttachableObject*>(object))
        attachable->Attach(owner);
}

void DetachFrom(INamespace* owner, IInterface* object) {
    if (auto* const attachable = dynamic_cast<IAttachableObject*>(object))
        attachable->Detach(owner);
}

} // namespace

Namespace::~Namespace() {
    // One by one, so that an entry's destructor finds only entries that still live.
    while (!GetEntries().empty())
        Namespace::Remove(std::string(GetEntries().begin()->first));
}

void Namespace::Add(const std::string& name, IInterface* pObject) {
    Utilities::Assert(pObject != nullptr, "pObject", "Core::Namespace::Add");
    if (FindEntry(name) == pObject)
        return;
    HeldObject held = Hold(pObject);
    const HeldObject earlier(ExchangeEntry(name, held.get()));
    // The entry holds it from now on.
    static_cast<void>(held.release());
    DetachFrom(this, earlier.get());
    AttachTo(this, pObject);
}

bool Namespace::Remove(const std::string& name) {
    const HeldObject earlier(ExchangeEntry(name, nullptr));
    DetachFrom(this, earlier.get());
    return earlier != nullptr;
}

Namespace& GlobalVariables() {
    static auto* const instance = new Namespace;
    return *instance;
}

} // namespace Core
