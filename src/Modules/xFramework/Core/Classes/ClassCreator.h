#pragma once

#include "Modules/xFramework/Core/Classes/IInterface.h"

#include <memory>

namespace Core {

/// Makes objects of one class, all of which offer TBase; IClassCreator<> is any creator, seen
/// without that type. What it makes is the caller's.
template <typename TBase = void>
class IClassCreator;

template <>
class IClassCreator<void> : public virtual IInterface {
public:
    virtual std::unique_ptr<IInterface> CreateObject() = 0;
};

template <typename TBase>
class IClassCreator : public virtual IClassCreator<> {
public:
    virtual std::unique_ptr<TBase> Create() = 0;
};

/// What all creators share.
template <typename TBase>
class AClassCreator : public virtual IClassCreator<TBase> {
public:
    std::unique_ptr<IInterface> CreateObject() override { return this->Create(); }
};

/// Makes default objects of TObject.
template <typename TObject, typename TBase>
class ClassCreator : public virtual AClassCreator<TBase> {
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
