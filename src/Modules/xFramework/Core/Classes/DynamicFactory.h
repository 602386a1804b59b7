#pragma once

#include "Modules/xFramework/Core/Classes/ClassFactory.h"

#include <utility>

namespace Core {

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
