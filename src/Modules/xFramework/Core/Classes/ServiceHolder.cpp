#include "Modules/xFramework/Core/Classes/ServiceDomain.h"
#include "Modules/xFramework/Utilities/Exception.h"
#include "Modules/xFramework/Utilities/Log.h"

namespace Core {

namespace {

constexpr const char* sourceFile = "src/Modules/xFramework/Core/Classes/ServiceDomain";
constexpr const char* constructor = "Core::ServiceDomain::ServiceHolder::ServiceHolder";

void LogCaughtException() {
    constexpr std::uint32_t line = 112;
    Utilities::Log(Utilities::LogLevel::Error, sourceFile, line,
                   "Core::ServiceDomain::ServiceHolder::DetachService",
                   Utilities::TakeCaughtException().text);
}

} // namespace

ServiceDomain::ServiceHolder::ServiceHolder(ServiceDomain* pDomain, const std::string& name)
    : m_name(name), m_domain(pDomain) {
    if (m_domain != nullptr)
        // cppcheck-suppress leakReturnValNotUsed ; returns nothing
        CreateService();
}

void ServiceDomain::ServiceHolder::AttachService() {
    if (m_pService->IsAttached() && m_pService->GetDomain() != m_domain)
        return;
    if (!m_pService->IsAttached() && m_detachCount == 0)
        m_detachCount = 1;
    while (m_detachCount != 0) {
        --m_detachCount;
        m_pService->OnAttach(m_domain);
    }
}

void ServiceDomain::ServiceHolder::DetachService() noexcept {
    try {
        while (m_pService != nullptr && m_pService->IsAttached()) {
            // First, for a detach counts even when the service's hook throws.
            ++m_detachCount;
            m_pService->OnDetach();
        }
    } catch (...) {
        LogCaughtException();
    }
}

void ServiceDomain::ServiceHolder::CreateService() {
    const std::shared_ptr<IClassCreator<>> pCreator = m_domain->GetCreator(m_name);
    Utilities::Assert(pCreator != nullptr, "pCreator", {sourceFile, 91, constructor});
    m_pService = TakeAs<IService>(pCreator->CreateObject());
    Utilities::Assert(m_pService != nullptr, "m_pService", {sourceFile, 94, constructor});
    m_pService->OnAttach(m_domain);
}

} // namespace Core
