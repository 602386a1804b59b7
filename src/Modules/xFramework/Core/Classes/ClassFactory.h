#pragma once

// Public, stable within a major version. One thread at a time. A factory owns its creators; what it
// creates is the caller's. A name that is not registered gives null, no error; what a creator
// throws passes through.

#include "Modules/xFramework/Core/Classes/IInterface.h"
#include "Modules/xFramework/Core/Classes/Service.h"

#include <map>
#include <memory>
#include <string>
#include <utility>

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
    // One object has one owner: the pointer of its offered type.
    if (offered != nullptr)
        static_cast<void>(object.release());
    // cppcheck-suppress returnDanglingLifetime ; the object was released to it
    return offered;
}

/// Makes objects by the names of their classes.
class IClassFactory : public virtual IService {
public:
    /// Enters a creator under a name. When the name is taken, the new creator replaces the old one,
    /// which is deleted as soon as it is not at work any more. Null takes the name out.
    virtual void Register(const std::string& name, std::unique_ptr<IClassCreator<>> creator) = 0;

    virtual bool IsRegistered(const std::string& name) const = 0;

    /// The creator under the name, null when there is none.
    virtual std::shared_ptr<IClassCreator<>> GetCreator(const std::string& name) const = 0;

    /// A new object made by the creator under the name, null when there is none. It is the
    /// caller's.
    virtual std::unique_ptr<IInterface> CreateInstance(const std::string& name) = 0;
};

/// The map from name to creator.
class ClassFactory : public virtual Service, public virtual IClassFactory {
public:
    void Register(const std::string& name, std::unique_ptr<IClassCreator<>> creator) override;
    bool IsRegistered(const std::string& name) const override;
    std::shared_ptr<IClassCreator<>> GetCreator(const std::string& name) const override;
    std::unique_ptr<IInterface> CreateInstance(const std::string& name) override;

private:
    std::map<std::string, std::shared_ptr<IClassCreator<>>> m_creators;
};

/// A factory whose objects are wanted as TBase.
template <typename TBase, typename TFactory>
class GenericFactory : public TFactory {
public:
    /// Like CreateInstance, as TBase; null also when the object does not offer TBase.
    std::unique_ptr<TBase> CreateTyped(const std::string& name) {
        return TakeAs<TBase>(this->CreateInstance(name));
    }
};

/// A factory that is given creators of TBase while the program runs.
template <typename TBase>
class IDynamicFactory : public virtual IClassFactory {
public:
    /// Like Register, for a creator that is known to make objects that offer TBase.
    virtual void RegisterCreator(const std::string& name,
                                 std::unique_ptr<IClassCreator<TBase>> creator) = 0;
};

template <typename TBase, typename TFactory>
class DynamicFactory : public TFactory, public virtual IDynamicFactory<TBase> {
public:
    void RegisterCreator(const std::string& name,
                         std::unique_ptr<IClassCreator<TBase>> creator) override {
        this->Register(name, std::move(creator));
    }
};

} // namespace Core
