#pragma once

#include "Modules/xFramework/Core/Classes/ClassCreator.h"
#include "Modules/xFramework/Core/Classes/INamespace.h"

#include <memory>
#include <string>

namespace Core {

class IServiceDomain;

/// What a service domain creates on request and owns. A service is attached to one domain at a
/// time, as often as it likes.
class IService : public virtual IInterface {
    // The virtual operations stand in the order that other modules are built against.
public:
    virtual bool IsAttached() const = 0;

protected:
    /// Called once, on the first attach, when the domain is known; gives what OnAttach returns. A
    /// service requests here the others that it needs. When the hook throws, the attach counts all
    /// the same.
    virtual IServiceDomain* AttachHook() = 0;

    /// Called once, on the last detach, while the domain is still known; gives what OnDetach
    /// returns. The service is detached afterwards even when the hook throws.
    virtual IServiceDomain* DetachHook() = 0;

public:
    /// Counts an attach and, on the first, attaches the service and returns what the hook gives,
    /// the domain unless a service has other plans; returns the domain on each further attach. The
    /// domain is another object than the service, stays the caller's and outlives the attachment.
    virtual IServiceDomain* OnAttach(IServiceDomain* pDomain) = 0;

    /// Counts a detach and, on the last, detaches the service and returns what the hook gives, the
    /// domain that it leaves unless a service has other plans; returns null while it stays
    /// attached.
    virtual IServiceDomain* OnDetach() = 0;

    /// The domain; raises "A service is not attached to any domain" when there is none.
    virtual IServiceDomain* GetDomain() const = 0;
};

/// Gives services by name. What it returns stays its own and lives as long as the domain.
class IServiceDomain : public virtual IService {
public:
    /// The service of that name, created on the first request; null when no kind of service is
    /// registered under the name.
    virtual IService* GetService(const std::string& name) = 0;

    /// The service at the end of a path of names, each service on the way being a domain itself. A
    /// path outside this domain's space is looked up in the domain that this one is attached to.
    /// Null when a step finds nothing.
    virtual IService* GetServiceByPath(const std::string& path) = 0;
};

/// The names that a domain answers for itself.
class IServiceSpace : public virtual INamespace {
public:
    /// Whether the path's first name belongs here: a service of that name exists or can be created.
    virtual bool HoldsPath(const std::string& path) const = 0;
};

/// A domain whose kinds of service are registered while the program runs.
class IDynamicDomain : public virtual IServiceDomain, public virtual IServiceSpace {
public:
    /// Registers what creates the service of that name; to be done before the first request. A
    /// later creator replaces an earlier one and leaves a service that exists as it is.
    virtual void RegisterService(const std::string& name,
                                 std::unique_ptr<IClassCreator<>> creator) = 0;
};

} // namespace Core
