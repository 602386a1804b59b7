#pragma once

// Public, stable within a major version. One thread at a time. A service is its domain's. Errors,
// assertions that fail among them, are raised as Utilities::Exception*; what a hook throws passes
// through.

#include "Modules/xFramework/Core/Classes/IInterface.h"

#include <cstdint>
#include <list>
#include <string>

namespace Core {

class IServiceDomain;

/// What a service domain creates on request and owns. A service is attached to one domain at a
/// time, any number of times.
class IService : public virtual IInterface {
    // The virtual operations are in the order that other modules are built against.
public:
    virtual bool IsAttached() const = 0;

protected:
    /// Called once, on the first attach, when the domain is known; gives what OnAttach returns. A
    /// service requests here the others that it needs. When the hook throws, the attach still
    /// counts.
    virtual IServiceDomain* AttachHook() = 0;

    /// Called once, on the last detach, while the domain is still known; gives what OnDetach
    /// returns. The service is detached afterwards even when the hook throws.
    virtual IServiceDomain* DetachHook() = 0;

public:
    /// Counts an attach and, on the first, attaches the service and returns what the hook gives,
    /// which is the domain unless a service overrides it; returns the domain on each further
    /// attach. The domain is another object than the service, stays the caller's and outlives the
    /// attachment.
    virtual IServiceDomain* OnAttach(IServiceDomain* pDomain) = 0;

    /// Counts a detach and, on the last, detaches the service and returns what the hook gives, the
    /// domain that it leaves unless a service overrides it; returns null while it stays
    /// attached.
    virtual IServiceDomain* OnDetach() = 0;

    /// The domain; raises "A service is not attached to any domain" when there is none.
    virtual IServiceDomain* GetDomain() const = 0;
};

/// Gives services by name. What it returns stays its own and lives as long as the domain.
class IServiceDomain : public virtual IService {
public:
    /// The service of that name, created on the first request; null when no kind of service is
    /// registered under the name. When its creator or its attach hook throws, the domain does not
    /// keep it: it is deleted without a detach, and the next request creates another one. What the
    /// hook has requested by then stays.
    virtual IService* GetService(const std::string& name) = 0;

    /// The service at the end of a path of names, each service on the way being a domain itself. A
    /// path outside this domain's space is looked up in the domain that this one is attached to.
    /// Null when a step finds nothing.
    virtual IService* GetServiceByPath(const std::string& path) = 0;
};

/// Base of every service: knows the domain that it is attached to and counts how often it has been
/// attached. Detached, with a count of 0, at first.
class Service : public virtual IService {
public:
    Service() = default;
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    bool IsAttached() const override { return m_domain != nullptr; }

    /// Attaching to a second domain while attached fails an assertion.
    IServiceDomain* OnAttach(IServiceDomain* pDomain) override;

    /// Detaching while detached fails an assertion.
    IServiceDomain* OnDetach() override;

    IServiceDomain* GetDomain() const override;

    /// The names of the services that this one has requested through RequestService, each once, in
    /// the order of the first requests: what to look at when a circular dependence is reported.
    const std::list<std::string>& GetRequestedNames() const { return m_requestedNames; }

protected:
    IServiceDomain* AttachHook() override { return m_domain; }
    IServiceDomain* DetachHook() override { return m_domain; }

    /// Notes the name and asks the domain for the service, see IServiceDomain::GetService.
    IService* RequestService(const std::string& name);

private:
    class DetachedAtEnd;

    IServiceDomain* m_domain = nullptr;
    std::uint32_t m_attachCount = 0;
    std::list<std::string> m_requestedNames;
};

} // namespace Core
