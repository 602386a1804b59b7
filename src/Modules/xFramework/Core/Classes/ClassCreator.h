#pragma once

#include "Modules/xFramework/Core/Classes/IInterface.h"

#include <memory>

namespace Core {

/// Makes objects of one class, seen without their type. What it makes is the caller's.
class AClassCreator : public virtual IInterface {
public:
    virtual std::unique_ptr<IInterface> CreateObject() = 0;
};

/// Makes objects that offer TBase.
template <typename TBase>
class IClassCreator : public virtual AClassCreator {
public:
    virtual std::unique_ptr<TBase> Create() = 0;

    std::unique_ptr<IInterface> CreateObject() override { return Create(); }
};

/// Makes default objects of TObject.
template <typename TObject, typename TBase>
class ClassCreator : public virtual IClassCreator<TBase> {
public:
    std::unique_ptr<TBase> Create() override { return std::make_unique<TObject>(); }
};

/// The object in its offered type T; null, with the object deleted, when it does not offer T.
template <typename T>
std::unique_ptr<T> TakeAs(std::unique_ptr<IInterface> object) {
    std::unique_ptr<T> offered(dynamic_cast<T*>(object.get()));
    if (offered != nullptr)
        static_cast<void>(object.release());
    // cppcheck-suppress returnDanglingLifetime ; the object was released to it
    return offered;
}

} // namespace Core
