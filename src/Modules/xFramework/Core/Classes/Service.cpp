#include "Modules/xFramework/Core/Classes/Service.h"

#include "Modules/xFramework/Utilities/Exception.h"

#include <algorithm>

namespace Core {

namespace {

constexpr const char* sourceFile = "src/Modules/xFramework/Core/Classes/Service";

} // namespace

/// Leaves the service detached at the end of its scope, whether or not an exception leaves it. Sets
/// the count too: a detach hook may have attached or detached its own service.
class Service::DetachedAtEnd {
public:
    explicit DetachedAtEnd(Service& service) : m_service(service) {}
    ~DetachedAtEnd() {
        m_service.m_domain = nullptr;
        m_service.m_attachCount = 0;
    }
    DetachedAtEnd(const DetachedAtEnd&) = delete;
    DetachedAtEnd& operator=(const DetachedAtEnd&) = delete;

private:
    Service& m_service;
};

IServiceDomain* Service::OnAttach(IServiceDomain* pDomain) {
    // The count comes first: an attach to a wrong domain is counted although it fails.
    ++m_attachCount;
    if (IsAttached()) {
        Utilities::Assert(GetDomain() == pDomain, "GetDomain() == pDomain",
                          {sourceFile, 31, "Core::Service::OnAttach"});
        return m_domain;
    }
    m_domain = pDomain;
    return AttachHook();
}

IServiceDomain* Service::OnDetach() {
    Utilities::Assert(IsAttached(), "IsAttached()", {sourceFile, 37, "Core::Service::OnDetach"});
    if (m_attachCount-- != 1)
        return nullptr;
    const DetachedAtEnd detached(*this);
    return DetachHook();
}

IServiceDomain* Service::GetDomain() const {
    if (!IsAttached())
        Utilities::Raise("A service is not attached to any domain",
                         {sourceFile, 47, "Core::Service::GetDomain"});
    return m_domain;
}

IService* Service::RequestService(const std::string& name) {
    if (std::find(m_requestedNames.begin(), m_requestedNames.end(), name) == m_requestedNames.end())
        m_requestedNames.push_back(name);
    return GetDomain()->GetService(name);
}

} // namespace Core
