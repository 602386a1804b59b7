#pragma once

#include "Modules/xFramework/Core/Classes/ClassCreator.h"
#include "Modules/xFramework/Core/Classes/Service.h"

#include <map>
#include <memory>
#include <string>

namespace Core {

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

} // namespace Core
