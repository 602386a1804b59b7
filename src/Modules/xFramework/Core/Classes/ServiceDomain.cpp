#include "Modules/xFramework/Core/Classes/ServiceDomain.h"

#include "Modules/xFramework/Utilities/Exception.h"
#include "Modules/xFramework/Utilities/Format.h"
#include "Modules/xFramework/Utilities/Log.h"

#include <algorithm>
#include <utility>

namespace Core {

namespace {

constexpr const char* sourceFile = "src/Modules/xFramework/Core/Classes/ServiceDomain";
constexpr const char* constructor = "Core::ServiceDomain::ServiceHolder::ServiceHolder";

struct UseReturner {
    void operator()(ServiceDomain::ServiceHolder* holder) const { holder->ReleaseUse(); }
};

/// A use of a holder that is given back unless it is released.
using HolderUse = std::unique_ptr<ServiceDomain::ServiceHolder, UseReturner>;

void LogCaughtException(const char* function, std::uint32_t line = __builtin_LINE()) {
    Utilities::Log(Utilities::LogLevel::Error, sourceFile, line, function,
                   Utilities::TakeCaughtException().text);
}

/// Looks up a path in a service, which must be a domain for that.
IService* FindInside(IService* service, const std::string& path) {
    auto* const domain = dynamic_cast<IServiceDomain*>(service);
    return domain == nullptr ? nullptr : domain->GetServiceByPath(path);
}

} // namespace

ServiceDomain::~ServiceDomain() {
    End();
    while (!m_holders.empty()) {
        const std::unique_ptr<ServiceHolder> last = std::move(m_holders.back());
        m_holders.pop_back();
        if (FindHolder(last->GetName()) == last.get())
            ExchangeEntry(last->GetName(), nullptr);
    }
}

IService* ServiceDomain::GetService(const std::string& name) {
    ServiceHolder* holder = FindHolder(name);
    if (holder == nullptr)
        holder = CreateHolder(name);
    return holder == nullptr ? nullptr : holder->GetService();
}

IService* ServiceDomain::GetServiceByPath(const std::string& path) {
    if (!HoldsPath(path))
        return IsAttached() ? GetDomain()->GetServiceByPath(path) : nullptr;
    std::string rest = path;
    HolderUse use(UseHolder(SplitFirstName(rest)));
    if (use == nullptr)
        return nullptr;
    IService* const service = use->GetService();
    IService* const found = rest.empty() ? service : FindInside(service, rest);
    // What was found stays in use: only a look-up that failed gives its use back.
    if (found != nullptr)
        static_cast<void>(use.release());
    return found;
}

bool ServiceDomain::HoldsPath(const std::string& path) const {
    std::string rest = path;
    const std::string name = SplitFirstName(rest);
    return FindHolder(name) != nullptr || CanCreate(name);
}

ServiceDomain::ServiceHolder* ServiceDomain::CreateHolder(const std::string& name) {
    if (!CanCreate(name))
        return nullptr;
    auto newHolder = std::make_unique<ServiceHolder>(this, name);
    ServiceHolder* const holder = newHolder.get();
    AppendWithinLimit(m_holders, std::move(newHolder));
    holder->AddUse();
    // The spelling of the message is what logs of other versions hold. Asked only now, and of the
    // finished services only: a name under construction counts as absent. The holder stays in the
    // list, for others may know its service by now.
    if (FindHolder(name) != nullptr)
        Utilities::Raise(
            Utilities::FillTemplate("Circular dependance detected! Please check ${1}", {name}),
            {sourceFile, 156, "Core::ServiceDomain::CreateHolder"});
    ExchangeEntry(name, holder);
    return holder;
}

IServiceDomain* ServiceDomain::AttachHook() {
    for (const auto& holder : m_holders)
        holder->AttachService();
    return Service::AttachHook();
}

IServiceDomain* ServiceDomain::DetachHook() {
    // What a service requests while it is detached must exist already: nobody would detach one that
    // is created now, for the walk has started beyond it.
    const bool wasDetachingServices = std::exchange(m_isDetachingServices, true);
    std::for_each(m_holders.rbegin(), m_holders.rend(),
                  [](const auto& holder) { holder->DetachFromDomain(); });
    m_isDetachingServices = wasDetachingServices;
    return Service::DetachHook();
}

void ServiceDomain::End() noexcept {
    // A service created from now on would outlive those that it needs.
    m_isEnding = true;
    std::for_each(m_holders.rbegin(), m_holders.rend(), [](const auto& holder) {
        holder->DetachService();
        // One that had been detached before has passed no detach on to what it created since.
        if (auto* const nested = dynamic_cast<ServiceDomain*>(holder->GetService()))
            nested->End();
    });
}

IInterface* ServiceDomain::Find(const std::string& name) {
    return GetService(name);
}

IInterface* ServiceDomain::FindByPath(const std::string& path) {
    return GetServiceByPath(path);
}

std::unique_ptr<IEnumerator> ServiceDomain::CreateEnumerator() {
    return std::make_unique<ServiceEnumerator>(m_holders);
}

bool ServiceDomain::CanCreate(const std::string& name) const {
    return !m_isEnding && !m_isDetachingServices && IsRegistered(name);
}

ServiceDomain::ServiceHolder* ServiceDomain::FindHolder(const std::string& name) const {
    return dynamic_cast<ServiceHolder*>(FindEntry(name));
}

ServiceDomain::ServiceHolder* ServiceDomain::UseHolder(const std::string& name) {
    ServiceHolder* const holder = FindHolder(name);
    if (holder == nullptr)
        return CreateHolder(name);
    holder->AddUse();
    return holder;
}

ServiceDomain::ServiceHolder::ServiceHolder(ServiceDomain* pDomain, const std::string& name)
    : m_name(name), m_domain(pDomain) {
    if (m_domain != nullptr)
        // cppcheck-suppress leakReturnValNotUsed ; returns nothing
        CreateService();
}

void ServiceDomain::ServiceHolder::AttachService() {
    if (m_pService->IsAttached() && !IsAttachedToDomain())
        return;
    if (!m_pService->IsAttached() && m_detachCount == 0)
        m_detachCount = 1;
    while (m_detachCount != 0) {
        --m_detachCount;
        m_pService->OnAttach(m_domain);
    }
}

void ServiceDomain::ServiceHolder::DetachFromDomain() noexcept {
    try {
        while (IsAttachedToDomain()) {
            // First, for a detach counts even when the service's hook throws.
            ++m_detachCount;
            m_pService->OnDetach();
        }
    } catch (...) {
        LogCaughtException("Core::ServiceDomain::ServiceHolder::DetachFromDomain");
    }
}

void ServiceDomain::ServiceHolder::DetachService() noexcept {
    try {
        while (m_pService != nullptr && m_pService->IsAttached())
            m_pService->OnDetach();
    } catch (...) {
        LogCaughtException("Core::ServiceDomain::ServiceHolder::DetachService");
    }
}

bool ServiceDomain::ServiceHolder::IsAttachedToDomain() const {
    return m_pService != nullptr && m_pService->IsAttached() && m_pService->GetDomain() == m_domain;
}

void ServiceDomain::ServiceHolder::CreateService() {
    const std::shared_ptr<IClassCreator<>> pCreator = m_domain->GetCreator(m_name);
    Utilities::Assert(pCreator != nullptr, "pCreator", {sourceFile, 91, constructor});
    m_pService = TakeAs<IService>(pCreator->CreateObject());
    Utilities::Assert(m_pService != nullptr, "m_pService", {sourceFile, 94, constructor});
    m_pService->OnAttach(m_domain);
}

ServiceDomain::ServiceHolder* ServiceDomain::ServiceEnumerator::NextEntry() {
    const auto next = m_current == m_holders.end() ? m_holders.begin() : std::next(m_current);
    if (next == m_holders.end())
        return nullptr;
    m_current = next;
    m_name = (*next)->GetName();
    return next->get();
}

void ServiceDomain::ServiceEnumerator::Reset() {
    m_current = m_holders.end();
    m_name.clear();
}

} // namespace Core
