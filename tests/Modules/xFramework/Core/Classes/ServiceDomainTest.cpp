#include "Modules/xFramework/Core/Classes/ServiceDomain.h"

#include "Modules/xFramework/Core/Classes/Namespace.h"
#include "tests/Modules/xFramework/Core/Classes/TestServices.h"
#include "tests/Modules/xFramework/Utilities/RaisedBy.h"

#include <gtest/gtest.h>

#include <list>
#include <stdexcept>

namespace {

using namespace Core;

constexpr const char* holderPlace = "src/Modules/xFramework/Core/Classes/ServiceDomain";
constexpr const char* holderConstructor = "Core::ServiceDomain::ServiceHolder::ServiceHolder";

class ServiceDomainTest : public testing::Test {
protected:
    ~ServiceDomainTest() override {
        m_domain.reset();
        EXPECT_EQ(LiveObject::Alive(), 0);
    }

    void Register(const std::string& name, ScriptedService::Script script = {}) {
        m_domain->RegisterService(name, std::make_unique<ScriptedCreator>(name, m_journal, script));
    }

    static ScriptedService::Script Requests(const std::string& name) {
        return {.onAttach = [name](ScriptedService& service) { service.RequestService(name); }};
    }

    /// The names of the holders in the enumerator's order.
    std::string Holders() const {
        std::string names;
        const auto enumerator = m_domain->CreateEnumerator();
        while (auto* const holder =
                   dynamic_cast<ServiceDomain::ServiceHolder*>(enumerator->Next())) {
            EXPECT_EQ(enumerator->GetName(), holder->GetName());
            names += "[" + holder->GetName() + "]";
        }
        return names;
    }

    std::uint32_t UsesOf(const std::string& name) const {
        const auto enumerator = m_domain->CreateEnumerator();
        while (auto* const holder =
                   dynamic_cast<ServiceDomain::ServiceHolder*>(enumerator->Next())) {
            if (holder->GetName() == name)
                return holder->GetUseCount();
        }
        return 0;
    }

    Journal m_journal;
    std::unique_ptr<ServiceDomain> m_domain = std::make_unique<ServiceDomain>();
};

TEST_F(ServiceDomainTest, CreatesAServiceOnItsFirstRequestAndRemembersIt) {
    Register("a");
    EXPECT_EQ(Holders(), "");
    IService* const service = m_domain->GetService("a");
    EXPECT_NE(service, nullptr);
    EXPECT_EQ(service->GetDomain(), m_domain.get());
    EXPECT_EQ(m_domain->GetService("a"), service);
    EXPECT_EQ(m_journal, (Journal{"a attaching", "a attached"}));
    EXPECT_EQ(Holders(), "[a]");
}

TEST_F(ServiceDomainTest, UnregisteredNameGivesNothingAndCreatesNoHolder) {
    Register("a");
    EXPECT_EQ(m_domain->GetService("b"), nullptr);
    EXPECT_EQ(m_domain->CreateHolder("b"), nullptr);
    EXPECT_EQ(m_domain->GetServiceByPath("b"), nullptr);
    EXPECT_EQ(Holders(), "");
}

TEST_F(ServiceDomainTest, RequestedServicesAreCreatedFirst) {
    Register("a", Requests("b"));
    Register("b", Requests("c"));
    Register("c");
    m_domain->GetService("a");
    EXPECT_EQ(m_journal, (Journal{"a attaching", "b attaching", "c attaching", "c attached",
                                  "b attached", "a attached"}));
    EXPECT_EQ(Holders(), "[c][b][a]");
}

TEST_F(ServiceDomainTest, LaterCreatorServesOnlyServicesToCome) {
    Register("a");
    IService* const service = m_domain->GetService("a");
    m_domain->RegisterServiceClass<Service>("a");
    EXPECT_EQ(m_domain->GetService("a"), service);
}

TEST_F(ServiceDomainTest, ObjectThatIsNoServiceFailsAnAssertion) {
    m_domain->RegisterService("a", std::make_unique<ClassCreator<LiveObject, IInterface>>());
    EXPECT_EQ(RaisedBy([this] { m_domain->GetService("a"); }),
              std::string("Assertion (m_pService) failed at ") + holderConstructor + " | " +
                  holderPlace + ":94 | " + holderConstructor);
    EXPECT_EQ(Holders(), "");
    EXPECT_EQ(LiveObject::Alive(), 0);
}

TEST_F(ServiceDomainTest, HolderWithoutCreatorFailsAnAssertion) {
    EXPECT_EQ(RaisedBy([this] { ServiceDomain::ServiceHolder(m_domain.get(), "a"); }),
              std::string("Assertion (pCreator) failed at ") + holderConstructor + " | " +
                  holderPlace + ":91 | " + holderConstructor);
}

TEST_F(ServiceDomainTest, HolderWithoutDomainStaysEmpty) {
    ServiceDomain::ServiceHolder holder(nullptr, "a");
    EXPECT_EQ(holder.GetName(), "a");
    EXPECT_EQ(holder.GetService(), nullptr);
    EXPECT_EQ(holder.GetUseCount(), 0U);
    holder.DetachService();
}

TEST_F(ServiceDomainTest, ServiceThatThrowsWhileItIsAttachedIsDeletedAndNotHeld) {
    Register("b");
    Register("a", {.onAttach = [](ScriptedService& service) {
                 service.RequestService("b");
                 throw std::runtime_error("no device");
             }});
    EXPECT_THROW(m_domain->GetService("a"), std::runtime_error);
    EXPECT_EQ(Holders(), "[b]");
    EXPECT_EQ(LiveObject::Alive(), 1);
}

/// Requests its own name while it is attached for the first time.
ScriptedService::Script RequestsItselfOnce() {
    return {.onAttach = [first = std::make_shared<bool>(true)](ScriptedService& service) {
        if (std::exchange(*first, false))
            service.RequestService("a");
    }};
}

const std::string circularDependence =
    std::string("Circular dependance detected! Please check a | ") + holderPlace +
    ":156 | Core::ServiceDomain::CreateHolder";

TEST_F(ServiceDomainTest, NestedRequestForTheSameNameIsACircularDependence) {
    Register("a", RequestsItselfOnce());
    EXPECT_EQ(RaisedBy([this] { m_domain->GetService("a"); }), circularDependence);
}

TEST_F(ServiceDomainTest, HolderOfACircularDependenceStaysInTheList) {
    Register("a", RequestsItselfOnce());
    RaisedBy([this] { m_domain->GetService("a"); });
    EXPECT_EQ(Holders(), "[a][a]");
    EXPECT_EQ(LiveObject::Alive(), 2);
    // The nested request was completed first, so that its service has the name.
    const auto enumerator = m_domain->CreateEnumerator();
    auto& first = dynamic_cast<ServiceDomain::ServiceHolder&>(*enumerator->Next());
    EXPECT_EQ(m_domain->GetService("a"), first.GetService());
    auto& second = dynamic_cast<ServiceDomain::ServiceHolder&>(*enumerator->Next());
    EXPECT_EQ(second.GetUseCount(), 1U);
    m_journal.clear();
    m_domain.reset();
    EXPECT_EQ(m_journal, (Journal{"a detaching", "a detaching", "a deleted", "a deleted"}));
}

TEST_F(ServiceDomainTest, SecondHolderOfANameIsACircularDependenceToo) {
    Register("a");
    m_domain->CreateHolder("a");
    EXPECT_EQ(RaisedBy([this] { m_domain->CreateHolder("a"); }), circularDependence);
}

TEST_F(ServiceDomainTest, CircularDependenceNamesAServiceThatLooksLikeAPlaceholder) {
    Register("${1}");
    m_domain->CreateHolder("${1}");
    EXPECT_EQ(RaisedBy([this] { m_domain->CreateHolder("${1}"); }),
              std::string("Circular dependance detected! Please check ${1} | ") + holderPlace +
                  ":156 | Core::ServiceDomain::CreateHolder");
}

TEST_F(ServiceDomainTest, HolderOfNoDomainHasNothingToDetach) {
    ServiceDomain::ServiceHolder holder(nullptr, "a");
    holder.DetachFromDomain();
    holder.DetachService();
    EXPECT_EQ(holder.GetService(), nullptr);
}

TEST_F(ServiceDomainTest, UsesAreCountedForTheCreationAndForEachLookUpByPath) {
    Register("a");
    m_domain->GetService("a");
    EXPECT_EQ(UsesOf("a"), 1U);
    m_domain->GetService("a");
    EXPECT_EQ(UsesOf("a"), 1U);
    m_domain->GetServiceByPath("a");
    EXPECT_EQ(UsesOf("a"), 2U);
}

TEST_F(ServiceDomainTest, PathCreatesItsServiceWithOneUse) {
    Register("a");
    EXPECT_NE(m_domain->GetServiceByPath("a"), nullptr);
    EXPECT_EQ(UsesOf("a"), 1U);
}

TEST_F(ServiceDomainTest, FailedPathGivesItsUseBack) {
    Register("a");
    EXPECT_EQ(m_domain->GetServiceByPath("a.b"), nullptr);
    EXPECT_EQ(Holders(), "[a]");
    EXPECT_EQ(UsesOf("a"), 0U);
}

/// A domain with the service "inside" and one whose attachment fails.
class InnerDomain : public ServiceDomain {
public:
    InnerDomain() {
        RegisterServiceClass<Service>("inside");
        RegisterService("broken", std::make_unique<ClassCreator<LiveObject, IInterface>>());
    }
};

TEST_F(ServiceDomainTest, PathLeadsIntoNestedDomains) {
    m_domain->RegisterServiceClass<InnerDomain>("inner");
    IService* const inside = m_domain->GetServiceByPath("inner.inside");
    ASSERT_NE(inside, nullptr);
    EXPECT_EQ(inside->GetDomain(), m_domain->GetService("inner"));
    EXPECT_EQ(m_domain->GetServiceByPath("inner/inside"), inside);
    EXPECT_EQ(UsesOf("inner"), 2U);
    EXPECT_EQ(m_domain->GetServiceByPath("inner.nothing"), nullptr);
    EXPECT_EQ(UsesOf("inner"), 2U);
}

TEST_F(ServiceDomainTest, PathOutsideANestedDomainIsLookedUpInTheDomainAroundIt) {
    m_domain->RegisterServiceClass<InnerDomain>("inner");
    Register("outside");
    auto& inner = dynamic_cast<IServiceDomain&>(*m_domain->GetService("inner"));
    EXPECT_EQ(inner.GetServiceByPath("outside"), m_domain->GetService("outside"));
    EXPECT_EQ(inner.GetServiceByPath("nothing"), nullptr);
    EXPECT_EQ(inner.GetService("outside"), nullptr);
}

TEST_F(ServiceDomainTest, PathThroughANestedDomainMayLeadOutOfItAgain) {
    m_domain->RegisterServiceClass<InnerDomain>("inner");
    Register("outside");
    IService* const outside = m_domain->GetServiceByPath("inner.outside");
    ASSERT_NE(outside, nullptr);
    EXPECT_EQ(outside->GetDomain(), m_domain.get());
    EXPECT_EQ(Holders(), "[inner][outside]");
    EXPECT_EQ(UsesOf("inner"), 1U);
    EXPECT_EQ(UsesOf("outside"), 1U);
}

TEST_F(ServiceDomainTest, ExceptionOnThePathGivesTheUseBack) {
    m_domain->RegisterServiceClass<InnerDomain>("inner");
    RaisedBy([this] { m_domain->GetServiceByPath("inner.broken"); });
    EXPECT_EQ(Holders(), "[inner]");
    EXPECT_EQ(UsesOf("inner"), 0U);
}

TEST_F(ServiceDomainTest, SpaceHoldsWhatExistsOrCanBeCreated) {
    Register("a");
    EXPECT_TRUE(m_domain->HoldsPath("a.b"));
    EXPECT_TRUE(m_domain->HoldsPath("a"));
    EXPECT_FALSE(m_domain->HoldsPath("b.a"));
    EXPECT_FALSE(m_domain->HoldsPath(""));
}

/// Claims every name as its own.
class ClaimingDomain : public ServiceDomain {
public:
    bool HoldsPath(const std::string& /*path*/) const override { return true; }
};

TEST_F(ServiceDomainTest, NameThatIsClaimedButCannotBeCreatedGivesNothing) {
    ClaimingDomain domain;
    EXPECT_EQ(domain.GetServiceByPath("a"), nullptr);
}

TEST_F(ServiceDomainTest, NamespacesGiveItsServicesByPath) {
    Namespace root;
    Register("a");
    ServiceDomain* const domain = m_domain.release();
    root.Add("Services", domain);
    auto* const service = dynamic_cast<IService*>(root.FindByPath("Services.a"));
    EXPECT_NE(service, nullptr);
    EXPECT_EQ(domain->Find("a"), static_cast<IInterface*>(service));
}

TEST_F(ServiceDomainTest, PathOfANamespaceCountsUsesAndLeadsOutOfNestedDomains) {
    Namespace root;
    m_domain->RegisterServiceClass<InnerDomain>("inner");
    Register("outside");
    ServiceDomain* const domain = m_domain.get();
    EXPECT_NE(domain->FindByPath("inner.outside"), nullptr);
    EXPECT_NE(domain->FindByPath("outside"), nullptr);
    EXPECT_EQ(UsesOf("inner"), 1U);
    EXPECT_EQ(UsesOf("outside"), 2U);
    root.Add("Services", m_domain.release());
    EXPECT_NE(root.FindByPath("Services.inner.outside"), nullptr);
}

TEST_F(ServiceDomainTest, FindCreatesOnRequest) {
    Register("a");
    IInterface* const found = m_domain->Find("a");
    EXPECT_NE(found, nullptr);
    EXPECT_EQ(found, static_cast<IInterface*>(m_domain->GetService("a")));
    EXPECT_EQ(Holders(), "[a]");
}

TEST_F(ServiceDomainTest, EnumeratorMeetsServicesThatAreCreatedMeanwhile) {
    Register("b");
    Register("a");
    const auto enumerator = m_domain->CreateEnumerator();
    EXPECT_EQ(enumerator->Next(), nullptr);
    m_domain->GetService("b");
    EXPECT_NE(enumerator->Next(), nullptr);
    m_domain->GetService("a");
    EXPECT_NE(enumerator->Next(), nullptr);
    EXPECT_EQ(enumerator->GetName(), "a");
    EXPECT_EQ(enumerator->Next(), nullptr);
    enumerator->Reset();
    EXPECT_NE(enumerator->Next(), nullptr);
    EXPECT_EQ(enumerator->GetName(), "b");
}

TEST_F(ServiceDomainTest, EndDetachesAllServicesInReverseOrderBeforeItDeletesThem) {
    Register("a", Requests("b"));
    Register("b");
    m_domain->GetService("a")->OnAttach(m_domain.get());
    m_journal.clear();
    m_domain.reset();
    EXPECT_EQ(m_journal, (Journal{"a detaching", "b detaching", "a deleted", "b deleted"}));
}

TEST_F(ServiceDomainTest, ServicesOfANestedDomainAreDetachedBeforeAnyOuterServiceIsDeleted) {
    m_domain->RegisterServiceClass<ServiceDomain>("inner");
    Register("younger");
    auto& inner = dynamic_cast<ServiceDomain&>(*m_domain->GetService("inner"));
    IService* used = nullptr;
    const ScriptedService::Script usesTheYounger = {
        .onDetach = [&used](ScriptedService&) { EXPECT_FALSE(used->IsAttached()); }};
    inner.RegisterService("user",
                          std::make_unique<ScriptedCreator>("user", m_journal, usesTheYounger));
    inner.GetService("user");
    used = m_domain->GetService("younger");
    m_journal.clear();
    m_domain.reset();
    EXPECT_EQ(m_journal,
              (Journal{"younger detaching", "user detaching", "younger deleted", "user deleted"}));
}

/// The domain "inner" with the service "user", between the services "older" and "younger".
class ServiceDomainNestedTest : public ServiceDomainTest {
protected:
    ServiceDomainNestedTest() {
        m_domain->RegisterServiceClass<ServiceDomain>("inner");
        Register("older", {.onDetach = [this](ScriptedService& service) { onOlder(service); }});
        Register("younger");
        m_domain->GetService("older");
        inner = dynamic_cast<ServiceDomain*>(m_domain->GetService("inner"));
        m_domain->GetService("younger");
        RegisterIn(*inner, "user",
                   {.onDetach = [this](ScriptedService& service) { onUser(service); }});
        RegisterIn(*inner, "late");
        inner->GetService("user");
        m_journal.clear();
    }

    void RegisterIn(ServiceDomain& domain, const std::string& name,
                    const ScriptedService::Script& script = {}) {
        domain.RegisterService(name, std::make_unique<ScriptedCreator>(name, m_journal, script));
    }

    /// What the services do when they are detached.
    ScriptedService::Action onOlder = [](ScriptedService&) {};
    ScriptedService::Action onUser = [](ScriptedService&) {};
    ServiceDomain* inner = nullptr;
    const Journal endWithoutNewServices = {"younger detaching", "user detaching", "older detaching",
                                           "younger deleted",   "user deleted",   "older deleted"};
};

TEST_F(ServiceDomainNestedTest, CreatesNoneWhileItIsDetachedWithTheDomainAround) {
    onUser = [](ScriptedService& service) { EXPECT_EQ(service.RequestService("late"), nullptr); };
    m_domain.reset();
    EXPECT_EQ(m_journal, endWithoutNewServices);
}

TEST_F(ServiceDomainNestedTest, CreatesNoneAfterTheEndOfTheDomainAroundHasDetachedIt) {
    onOlder = [](ScriptedService& service) {
        EXPECT_EQ(service.GetDomain()->GetServiceByPath("inner.late"), nullptr);
        EXPECT_NE(service.GetDomain()->GetServiceByPath("inner.user"), nullptr);
    };
    m_domain.reset();
    EXPECT_EQ(m_journal, endWithoutNewServices);
}

TEST_F(ServiceDomainNestedTest, WhatItCreatedWhileDetachedIsDetachedBeforeAnyServiceIsDeleted) {
    inner->RegisterServiceClass<ServiceDomain>("innermost");
    auto& innermost = dynamic_cast<ServiceDomain&>(*inner->GetService("innermost"));
    RegisterIn(innermost, "latest");
    inner->OnDetach();
    inner->GetService("late");
    innermost.GetService("latest");
    m_journal.clear();
    m_domain.reset();
    EXPECT_EQ(m_journal, (Journal{"younger detaching", "late detaching", "latest detaching",
                                  "older detaching", "younger deleted", "late deleted",
                                  "latest deleted", "user deleted", "older deleted"}));
}

TEST_F(ServiceDomainTest, DetachOfADomainDetachesItsServices) {
    ServiceDomain around;
    Register("a");
    IService* const service = m_domain->GetService("a");
    m_domain->OnAttach(&around);
    EXPECT_EQ(m_domain->OnDetach(), &around);
    EXPECT_FALSE(service->IsAttached());
    EXPECT_EQ(m_domain->GetService("a"), service);
}

TEST_F(ServiceDomainTest, DomainThatIsDetachedCreatesServicesLikeOneThatNeverWasAttached) {
    ServiceDomain around;
    for (const char* const name : {"a", "late", "path"})
        Register(name);
    m_domain->GetService("a");
    m_domain->OnAttach(&around);
    m_domain->OnDetach();
    m_journal.clear();
    IService* const late = m_domain->GetService("late");
    ASSERT_NE(late, nullptr);
    EXPECT_EQ(late->GetDomain(), m_domain.get());
    EXPECT_TRUE(m_domain->HoldsPath("path"));
    EXPECT_NE(m_domain->GetServiceByPath("path"), nullptr);
    EXPECT_EQ(m_journal,
              (Journal{"late attaching", "late attached", "path attaching", "path attached"}));
    m_journal.clear();
    m_domain->OnAttach(&around);
    EXPECT_EQ(m_journal, (Journal{"a attaching", "a attached"})) << "the others are attached";
    m_domain->OnDetach();
}

TEST_F(ServiceDomainTest, ServiceThatIsDetachedWithItsDomainGetsNoNewOne) {
    ServiceDomain around;
    std::vector<IService*> found;
    Register("a", {.onDetach = [&found, this](ScriptedService& service) {
                 found = {service.RequestService("late"), m_domain->GetServiceByPath("late")};
                 EXPECT_FALSE(m_domain->HoldsPath("late"));
             }});
    Register("late");
    m_domain->GetService("a");
    m_domain->OnAttach(&around);
    m_domain->OnDetach();
    EXPECT_EQ(found, (std::vector<IService*>{nullptr, nullptr}));
    EXPECT_EQ(Holders(), "[a]");
    EXPECT_NE(m_domain->GetService("late"), nullptr) << "after the detach";
}

TEST_F(ServiceDomainTest, DomainThatIsDetachedAnswersByPathForServicesThatExist) {
    ServiceDomain around;
    Register("a");
    IService* const service = m_domain->GetService("a");
    m_domain->OnAttach(&around);
    m_domain->OnDetach();
    // As at its end: the name stays its own although it creates none any more.
    m_domain->RegisterService("a", nullptr);
    EXPECT_EQ(m_domain->GetServiceByPath("a"), service);
}

TEST_F(ServiceDomainTest, DomainThatIsAttachedAgainAttachesItsServicesAgain) {
    ServiceDomain first;
    ServiceDomain second;
    Register("a");
    Register("b");
    Register("late");
    IService* const service = m_domain->GetService("a");
    m_domain->GetService("b");
    m_domain->OnAttach(&first);
    m_domain->OnDetach();
    m_journal.clear();
    EXPECT_EQ(m_domain->OnAttach(&second), &second);
    EXPECT_EQ(m_journal, (Journal{"a attaching", "a attached", "b attaching", "b attached"}));
    EXPECT_EQ(service->GetDomain(), m_domain.get());
    EXPECT_EQ(m_domain->GetService("a"), service);
    EXPECT_NE(m_domain->GetService("late"), nullptr);
    m_domain->OnDetach();
}

TEST_F(ServiceDomainTest, DomainThatIsAttachedAgainGivesEachServiceAllItsAttachesBack) {
    ServiceDomain around;
    Register("a");
    Register("b", {.onDetach = [](ScriptedService&) { throw std::runtime_error("stuck"); }});
    for (const char* const name : {"a", "b"}) {
        SCOPED_TRACE(name);
        IService* const service = m_domain->GetService(name);
        service->OnAttach(m_domain.get());
        service->OnAttach(m_domain.get());
        for (int round = 0; round < 2; ++round) {
            m_domain->OnAttach(&around);
            m_domain->OnDetach();
            EXPECT_FALSE(service->IsAttached());
        }
        m_domain->OnAttach(&around);
        EXPECT_EQ(service->OnDetach(), nullptr);
        EXPECT_EQ(service->OnDetach(), nullptr);
        EXPECT_TRUE(service->IsAttached()) << "the domain's own attach";
        m_domain->OnDetach();
    }
}

TEST_F(ServiceDomainTest, ClientsAttachWhileTheDomainIsDetachedIsCountedBesideTheOthers) {
    ServiceDomain around;
    Register("a");
    IService* const service = m_domain->GetService("a");
    m_domain->OnAttach(&around);
    m_domain->OnDetach();
    service->OnAttach(m_domain.get());
    m_domain->OnAttach(&around);
    EXPECT_EQ(service->OnDetach(), nullptr);
    EXPECT_TRUE(service->IsAttached());
    m_domain->OnDetach();
}

TEST_F(ServiceDomainTest, ServiceThatHasGoneToAnotherDomainStaysThere) {
    ServiceDomain around;
    ServiceDomain other;
    Register("a");
    IService* const service = m_domain->GetService("a");
    m_domain->OnAttach(&around);
    m_domain->OnDetach();
    service->OnAttach(&other);
    m_domain->OnAttach(&around);
    EXPECT_EQ(service->GetDomain(), &other);
    EXPECT_EQ(service->OnDetach(), &other);
    EXPECT_FALSE(service->IsAttached());
    m_domain->OnDetach();
}

TEST_F(ServiceDomainTest, AttachesToAnotherDomainAreNeitherTakenBackNorCounted) {
    ServiceDomain around;
    ServiceDomain other;
    Register("a");
    IService* const service = m_domain->GetService("a");
    m_domain->OnAttach(&around);
    m_domain->OnDetach();
    service->OnAttach(&other);
    service->OnAttach(&other);
    m_domain->OnAttach(&around);
    m_domain->OnDetach();
    EXPECT_EQ(service->OnDetach(), nullptr);
    EXPECT_EQ(service->OnDetach(), &other);
    m_domain->OnAttach(&around);
    EXPECT_EQ(service->OnDetach(), m_domain.get()) << "attached more than once";
    m_domain->OnDetach();
}

TEST_F(ServiceDomainTest, EndDetachesAServiceFromAnotherDomainToo) {
    ServiceDomain other;
    Register("a");
    IService* const service = m_domain->GetService("a");
    service->OnDetach();
    service->OnAttach(&other);
    service->OnAttach(&other);
    m_journal.clear();
    m_domain.reset();
    EXPECT_EQ(m_journal, (Journal{"a detaching", "a deleted"}));
}

TEST_F(ServiceDomainTest, ServiceThatItsClientHasDetachedIsAttachedWithTheDomain) {
    ServiceDomain around;
    Register("a");
    IService* const service = m_domain->GetService("a");
    service->OnDetach();
    m_domain->OnAttach(&around);
    EXPECT_EQ(service->GetDomain(), m_domain.get());
    m_domain->OnDetach();
}

TEST_F(ServiceDomainTest, FirstAttachOfADomainLeavesItsServicesAsTheyAre) {
    ServiceDomain around;
    Register("a");
    IService* const service = m_domain->GetService("a");
    m_journal.clear();
    m_domain->OnAttach(&around);
    EXPECT_EQ(m_journal, Journal());
    service->OnDetach();
    EXPECT_FALSE(service->IsAttached()) << "attached more than once";
    m_domain->OnDetach();
}

TEST_F(ServiceDomainTest, ServiceThatIsBeingDetachedFindsTheOthersButCreatesNone) {
    Register("late");
    IService* other = nullptr;
    std::vector<IService*> found;
    Register("a", {.onDetach = [&found](ScriptedService& service) {
                 found = {service.RequestService("b"), service.RequestService("late")};
             }});
    Register("b");
    m_domain->GetService("a");
    other = m_domain->GetService("b");
    m_domain.reset();
    EXPECT_EQ(found, (std::vector<IService*>{other, nullptr}));
}

TEST_F(ServiceDomainTest, KindThatIsRegisteredWhileTheDomainEndsIsNotCreatedAnyMore) {
    std::vector<IService*> found;
    bool isHeld = true;
    Register("a", {.onDetach = [&](ScriptedService& service) {
                 Register("late");
                 found = {service.RequestService("late"), m_domain->GetServiceByPath("late")};
                 isHeld = m_domain->HoldsPath("late");
                 EXPECT_EQ(Holders(), "[a]");
             }});
    m_domain->GetService("a");
    // The hook reaches the domain through the fixture, which a reset would empty first.
    const ServiceDomain* const domain = m_domain.get();
    delete domain;
    static_cast<void>(m_domain.release());
    EXPECT_EQ(found, (std::vector<IService*>{nullptr, nullptr}));
    EXPECT_FALSE(isHeld);
}

/// Asks its domain for another service while it is deleted.
class AskingAtItsEnd : public Service {
public:
    explicit AskingAtItsEnd(std::vector<IService*>& answers) : m_answers(answers) {}
    ~AskingAtItsEnd() override {
        m_answers.push_back(m_kept->GetService("younger"));
        m_answers.push_back(m_kept->GetServiceByPath("younger"));
    }

protected:
    IServiceDomain* AttachHook() override { return m_kept = GetDomain(); }

private:
    std::vector<IService*>& m_answers;
    IServiceDomain* m_kept = nullptr;
};

class AskingCreator : public AClassCreator<IService> {
public:
    explicit AskingCreator(std::vector<IService*>& answers) : m_answers(answers) {}
    std::unique_ptr<IService> Create() override {
        return std::make_unique<AskingAtItsEnd>(m_answers);
    }

private:
    std::vector<IService*>& m_answers;
};

TEST_F(ServiceDomainTest, ServiceThatIsBeingDeletedFindsNoneThatIsGone) {
    std::vector<IService*> answers;
    m_domain->RegisterService("older", std::make_unique<AskingCreator>(answers));
    Register("younger");
    m_domain->GetService("older");
    m_domain->GetService("younger");
    ServiceDomain* const domain = m_domain.release();
    delete domain;
    EXPECT_EQ(answers, (std::vector<IService*>{nullptr, nullptr}));
}

TEST_F(ServiceDomainTest, NameStaysThatOfTheServiceThatHadItFirst) {
    std::vector<IService*> answers;
    m_domain->RegisterService("younger", std::make_unique<AskingCreator>(answers));
    IService* const first = m_domain->GetService("younger");
    RaisedBy([this] { m_domain->CreateHolder("younger"); });
    ServiceDomain* const domain = m_domain.release();
    delete domain;
    // The second service is deleted while the first one lives, and then the first one.
    EXPECT_EQ(answers, (std::vector<IService*>{first, first, nullptr, nullptr}));
}

TEST_F(ServiceDomainTest, ServiceThatThrowsAtTheEndIsLoggedAndTheOthersAreStillDetached) {
    Register("a");
    Register("b", {.onDetach = [](ScriptedService&) { throw std::runtime_error("stuck"); }});
    Register("c", {.onDetach = [](ScriptedService&) {
                 throw new Utilities::Exception("stuck as well");
             }});
    for (const char* const name : {"a", "b", "c"})
        m_domain->GetService(name);
    m_journal.clear();
    const Utilities::LogRecorder log;
    m_domain.reset();
    EXPECT_EQ(m_journal, (Journal{"c detaching", "b detaching", "a detaching", "c deleted",
                                  "b deleted", "a deleted"}));
    const std::string place =
        std::string("1|") + holderPlace + "|Core::ServiceDomain::ServiceHolder::DetachService|";
    EXPECT_EQ(log.records, (std::vector<std::string>{place + "stuck as well", place + "stuck"}));
}

TEST_F(ServiceDomainTest, ServiceThatThrowsWhenItsDomainIsDetachedIsLoggedAndTheOthersAreDetached) {
    ServiceDomain around;
    Register("a");
    Register("b", {.onDetach = [](ScriptedService&) { throw std::runtime_error("stuck"); }});
    m_domain->GetService("a");
    m_domain->GetService("b");
    m_domain->OnAttach(&around);
    m_journal.clear();
    const Utilities::LogRecorder log;
    m_domain->OnDetach();
    EXPECT_EQ(m_journal, (Journal{"b detaching", "a detaching"}));
    EXPECT_EQ(log.records, (std::vector<std::string>{
                               std::string("1|") + holderPlace +
                               "|Core::ServiceDomain::ServiceHolder::DetachFromDomain|stuck"}));
}

TEST_F(ServiceDomainTest, IsOneServiceOneNamespaceAndOneRoot) {
    ServiceDomain& domain = *m_domain;
    EXPECT_EQ(static_cast<IService*>(static_cast<ClassFactory*>(&domain)),
              static_cast<IService*>(static_cast<IServiceDomain*>(&domain)));
    EXPECT_EQ(static_cast<INamespace*>(static_cast<ANamespace*>(&domain)),
              static_cast<INamespace*>(static_cast<IServiceSpace*>(&domain)));
    EXPECT_EQ(static_cast<IInterface*>(static_cast<ANamespace*>(&domain)),
              static_cast<IInterface*>(static_cast<IDynamicDomain*>(&domain)));
}

struct ShortList : std::list<int> {
    static std::size_t max_size() { return 2; }
};

TEST(ServiceDomainAppendTest, RefusesWhatExceedsTheMaximumLength) {
    ShortList list;
    AppendWithinLimit(list, 1);
    AppendWithinLimit(list, 2);
    try {
        AppendWithinLimit(list, 3);
        FAIL() << "nothing thrown";
    } catch (const std::length_error& error) {
        EXPECT_STREQ(error.what(), "list too long");
    }
    EXPECT_EQ(list, (std::list<int>{1, 2}));
}

} // namespace
