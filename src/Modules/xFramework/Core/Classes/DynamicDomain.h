#pragma once

#include "Modules/xFramework/Core/Classes/ClassFactory.h"

#include <utility>

namespace Core {

/// The domain form of a dynamic factory: the kinds of service are the classes of the factory.
class DynamicDomain : public ClassFactory, public virtual IDynamicDomain {
public:
    void RegisterService(const std::string& name,
                         std::unique_ptr<IClassCreator<>> creator) override {
        Register(name, std::move(creator));
    }

    /// Registers the default constructor of TService.
    template <typename TService>
    void RegisterServiceClass(const std::string& name) {
        RegisterService(name, std::make_unique<ClassCreator<TService, IService>>());
    }
};

} // namespace Core
