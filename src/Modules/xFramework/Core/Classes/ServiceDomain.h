#pragma once

// Public, stable within a major version. One thread at a time. A domain owns its services and
// deletes them with itself. Errors, assertions that fail among them, are raised as
// Utilities::Exception*; what a service throws passes through.

#include "Modules/xFramework/Core/Classes/ANamespace.h"
#include "Modules/xFramework/Core/Classes/ClassFactory.h"

#include <cstdint>
#include <list>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace Core {

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

/// Appends to a list; throws std::length_error "list too long", as some run-time libraries do of
/// themselves, when the list has its maximum length.
template <typename List>
void AppendWithinLimit(List& list, typename List::value_type&& item) {
    if (list.size() >= list.max_size())
        throw std::length_error("list too long");
    list.push_back(std::move(item));
}

/// Owns a set of named services: creates each on the first request by the creator registered under
/// its name, attaches it to itself and remembers it under that name. A domain is a service and can
/// be one of another domain.
///
/// With the domain the services end: first every one of them is detached, the youngest first and as
/// often as it has been attached, then they are deleted in the same order. The services of nested
/// domains are detached with these, so that those of all depths are detached before the first one
/// is deleted. A domain at its end, or nested in one, still answers for the services that exist,
/// and creates none.
///
/// A domain that is detached passes the detach on to its services and creates none meanwhile. Then
/// it goes on like one that has never been attached: it answers for the services that exist,
/// detached as they are, and creates others. Attached again, it attaches its
/// services again, the oldest first and as often as they had been.
class ServiceDomain : public virtual Service, public DynamicDomain, public ANamespace {
public:
    class ServiceHolder;
    class ServiceEnumerator;

    ServiceDomain() = default;
    ~ServiceDomain() override;

    IService* GetService(const std::string& name) override;
    IService* GetServiceByPath(const std::string& path) override;
    bool HoldsPath(const std::string& path) const override;

    /// Creates the service registered under the name, whether or not one exists; returns its new
    /// holder, which stays the domain's, or null when no creator is registered or the domain is at
    /// its end or being detached. Everything that the service requests while it is created or
    /// attached is created before.
    ///
    /// Raises "Circular dependance detected! Please check …" when meanwhile a nested request for
    /// the same name has been completed. A cycle whose nested requests never complete is not
    /// detected: it overflows the stack.
    ServiceHolder* CreateHolder(const std::string& name);

    /// As a namespace, a domain gives its services: like GetService and GetServiceByPath.
    IInterface* Find(const std::string& name) override;
    IInterface* FindByPath(const std::string& path) override;

    /// Walks the ServiceHolders in the order of their creation.
    std::unique_ptr<IEnumerator> CreateEnumerator() override;

protected:
    /// Attaches the services that a detach has detached. A subclass that overrides this calls it.
    IServiceDomain* AttachHook() override;

    /// Detaches the services. A subclass that overrides this calls it.
    IServiceDomain* DetachHook() override;

private:
    using HolderList = std::list<std::unique_ptr<ServiceHolder>>;

    ServiceHolder* FindHolder(const std::string& name) const;
    ServiceHolder* UseHolder(const std::string& name);
    bool CanCreate(const std::string& name) const;
    void End() noexcept;

    HolderList m_holders;
    /// Set by the destructor, its own or that of a domain around this one.
    bool m_isEnding = false;
    bool m_isDetachingServices = false;
};

/// One service of a domain, and what the domain knows of it. Lives as long as the domain.
class ServiceDomain::ServiceHolder : public virtual IInterface {
public:
    /// Creates the service by the domain's creator of that name and attaches it; an assertion fails
    /// when there is no creator or it creates no service. With no domain the holder stays empty.
    ServiceHolder(ServiceDomain* pDomain, const std::string& name);

    const std::string& GetName() const { return m_name; }

    /// The service, the holder's own; null in an empty holder.
    IService* GetService() const { return m_pService.get(); }

    /// How often the holder is in use: once for its creation, which may be that of a look-up by
    /// path, and once for each later look-up by path that has led through it to a service. A
    /// look-up that created the holder and then failed has given that use back.
    std::uint32_t GetUseCount() const { return m_useCount; }
    void AddUse() { ++m_useCount; }
    void ReleaseUse() { --m_useCount; }

    /// Attaches the service to the domain as often as DetachFromDomain has detached it since; at
    /// least once unless it is attached. A service that has gone to another domain meanwhile stays
    /// there.
    void AttachService();

    /// Detaches the service from the domain as often as it has been attached to it. What the
    /// service throws is logged, and ends the attempt.
    void DetachFromDomain() noexcept;

    /// Detaches the service from whatever domain it is attached to, in the same way.
    void DetachService() noexcept;

private:
    void CreateService();
    bool IsAttachedToDomain() const;

    std::string m_name;
    std::uint32_t m_useCount = 0;
    std::unique_ptr<IService> m_pService;
    ServiceDomain* m_domain;
    /// How many attaches DetachFromDomain has taken back: the domain's own and those of clients.
    std::uint32_t m_detachCount = 0;
};

/// Walks the holders of a domain in the order of their creation, those of services that are created
/// meanwhile included.
class ServiceDomain::ServiceEnumerator : public AGenericEnumerator<ServiceHolder> {
public:
    explicit ServiceEnumerator(const HolderList& holders) : m_holders(holders) {}

    ServiceHolder* NextEntry() override;
    const std::string& GetName() const override { return m_name; }
    void Reset() override;

private:
    const HolderList& m_holders;
    HolderList::const_iterator m_current = m_holders.end();
    std::string m_name;
};

} // namespace Core
