#pragma once

#include "Modules/xFramework/Core/Classes/IService.h"

#include <cstdint>
#include <list>

namespace Core {

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
