#include "Modules/xFramework/Core/Classes/Service.h"

#include "Modules/xFramework/Core/Classes/ServiceDomain.h"
#include "tests/Modules/xFramework/Utilities/RaisedBy.h"
#include "tests/Support/VirtualSlots.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace {

using namespace Core;

constexpr const char* sourceFile = "src/Modules/xFramework/Core/Classes/Service";

/// Notes the calls of its hooks and what it knows of its domain then; the hooks give other domains
/// than its own.
class HookedService : public Service {
public:
    ServiceDomain attachResult;
    ServiceDomain detachResult;
    std::vector<std::string> calls;

    /// The places of the operations.
    static std::vector<std::size_t> Slots() {
        return TestSupport::VirtualSlots(&Service::IsAttached, &HookedService::AttachHook,
                                         &HookedService::DetachHook, &Service::OnAttach,
                                         &Service::OnDetach, &Service::GetDomain);
    }

protected:
    IServiceDomain* AttachHook() override {
        calls.emplace_back(IsAttached() ? "attach, attached" : "attach, detached");
        return &attachResult;
    }
    IServiceDomain* DetachHook() override {
        calls.emplace_back(IsAttached() ? "detach, attached" : "detach, detached");
        return &detachResult;
    }
};

TEST(ServiceTest, IsDetachedAtFirst) {
    const Service service;
    EXPECT_FALSE(service.IsAttached());
    EXPECT_EQ(RaisedBy([&service] { service.GetDomain(); }),
              std::string("A service is not attached to any domain | ") + sourceFile +
                  ":47 | Core::Service::GetDomain");
}

TEST(ServiceTest, KnowsTheDomainThatItIsAttachedTo) {
    ServiceDomain domain;
    Service service;
    EXPECT_EQ(service.OnAttach(&domain), &domain);
    EXPECT_TRUE(service.IsAttached());
    EXPECT_EQ(service.GetDomain(), &domain);
    EXPECT_EQ(service.OnDetach(), &domain);
    EXPECT_FALSE(service.IsAttached());
}

TEST(ServiceTest, StaysAttachedUntilDetachedAsOftenAsAttached) {
    ServiceDomain domain;
    HookedService service;
    EXPECT_EQ(service.OnAttach(&domain), &service.attachResult);
    EXPECT_EQ(service.OnAttach(&domain), &domain);
    EXPECT_EQ(service.OnAttach(&domain), &domain);
    EXPECT_EQ(service.OnDetach(), nullptr);
    EXPECT_EQ(service.OnDetach(), nullptr);
    EXPECT_TRUE(service.IsAttached());
    EXPECT_EQ(service.OnDetach(), &service.detachResult);
    EXPECT_FALSE(service.IsAttached());
    EXPECT_EQ(service.calls, (std::vector<std::string>{"attach, attached", "detach, attached"}));
}

TEST(ServiceTest, CanBeAttachedAgainAfterItsLastDetach) {
    ServiceDomain first;
    ServiceDomain second;
    Service service;
    service.OnAttach(&first);
    service.OnDetach();
    EXPECT_EQ(service.OnAttach(&second), &second);
}

TEST(ServiceTest, AttachToASecondDomainFailsAnAssertion) {
    ServiceDomain domain;
    ServiceDomain other;
    Service service;
    service.OnAttach(&domain);
    EXPECT_EQ(
        RaisedBy([&] { service.OnAttach(&other); }),
        std::string("Assertion (GetDomain() == pDomain) failed at Core::Service::OnAttach | ") +
            sourceFile + ":31 | Core::Service::OnAttach");
    EXPECT_EQ(service.GetDomain(), &domain);
}

TEST(ServiceTest, FailedAttachIsCountedAllTheSame) {
    ServiceDomain domain;
    ServiceDomain other;
    Service service;
    service.OnAttach(&domain);
    RaisedBy([&] { service.OnAttach(&other); });
    service.OnDetach();
    EXPECT_TRUE(service.IsAttached());
    service.OnDetach();
    EXPECT_FALSE(service.IsAttached());
}

/// Throws when it is attached.
class Shy : public Service {
protected:
    IServiceDomain* AttachHook() override { throw std::runtime_error("shy"); }
};

TEST(ServiceTest, IsAttachedEvenWhenItsHookThrows) {
    ServiceDomain domain;
    Shy service;
    EXPECT_THROW(service.OnAttach(&domain), std::runtime_error);
    EXPECT_EQ(service.GetDomain(), &domain);
    EXPECT_EQ(service.OnDetach(), &domain);
    EXPECT_FALSE(service.IsAttached());
}

TEST(ServiceTest, AttachToNoDomainCallsTheHookAndCounts) {
    ServiceDomain domain;
    HookedService service;
    EXPECT_EQ(service.OnAttach(nullptr), &service.attachResult);
    EXPECT_FALSE(service.IsAttached());
    EXPECT_EQ(service.OnAttach(&domain), &service.attachResult);
    EXPECT_EQ(service.calls, (std::vector<std::string>{"attach, detached", "attach, attached"}));
    EXPECT_EQ(service.OnDetach(), nullptr);
    EXPECT_EQ(service.OnDetach(), &service.detachResult);
}

TEST(ServiceTest, OperationsAreInTheOrderThatOtherModulesAreBuiltAgainst) {
    // The destructor comes first.
    EXPECT_EQ(HookedService::Slots(), (std::vector<std::size_t>{2, 3, 4, 5, 6, 7}));
}

TEST(ServiceTest, DetachWhileDetachedFailsAnAssertion) {
    Service service;
    EXPECT_EQ(RaisedBy([&service] { service.OnDetach(); }),
              std::string("Assertion (IsAttached()) failed at Core::Service::OnDetach | ") +
                  sourceFile + ":37 | Core::Service::OnDetach");
}

/// Throws when it is detached.
class Stuck : public Service {
protected:
    IServiceDomain* DetachHook() override { throw std::runtime_error("stuck"); }
};

TEST(ServiceTest, IsDetachedEvenWhenItsHookThrows) {
    ServiceDomain first;
    ServiceDomain second;
    Stuck service;
    service.OnAttach(&first);
    EXPECT_THROW(service.OnDetach(), std::runtime_error);
    EXPECT_FALSE(service.IsAttached());
    EXPECT_EQ(service.OnAttach(&second), &second);
    EXPECT_THROW(service.OnDetach(), std::runtime_error);
}

/// Attaches and detaches itself once more while it is detached.
class Restless : public Service {
protected:
    IServiceDomain* DetachHook() override {
        OnDetach();
        OnDetach();
        OnAttach(GetDomain());
        return GetDomain();
    }
};

TEST(ServiceTest, IsDetachedWhateverItsHookCounts) {
    ServiceDomain domain;
    Restless service;
    service.OnAttach(&domain);
    EXPECT_EQ(service.OnDetach(), &domain);
    EXPECT_FALSE(service.IsAttached());
    service.OnAttach(&domain);
    EXPECT_EQ(service.OnDetach(), &domain);
    EXPECT_FALSE(service.IsAttached());
}

class Requesting : public Service {
public:
    using Service::RequestService;
};

TEST(ServiceTest, NotesOnceWhatItRequests) {
    ServiceDomain domain;
    domain.RegisterServiceClass<Service>("known");
    Requesting service;
    service.OnAttach(&domain);
    EXPECT_TRUE(service.GetRequestedNames().empty());
    EXPECT_EQ(service.RequestService("known"), domain.GetService("known"));
    EXPECT_EQ(service.RequestService("unknown"), nullptr);
    EXPECT_EQ(service.RequestService("known"), domain.GetService("known"));
    EXPECT_EQ(service.GetRequestedNames(), (std::list<std::string>{"known", "unknown"}));
}

} // namespace
