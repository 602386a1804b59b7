#include "Modules/xFramework/Utilities/FormatProviders.h"

#include "tests/Modules/xFramework/Utilities/ProviderGuard.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <thread>

namespace Utilities {
namespace {

void AppendA(std::string& text) {
    text += 'a';
}

void AppendB(std::string& text) {
    text += 'b';
}

void Clear(std::string& text) {
    text.clear();
}

std::string Process(std::string text) {
    FormatProviders::Instance().ProcessString(text);
    return text;
}

TEST(FormatProvidersTest, LeaveTextAsItIsWhileNoneIsRegistered) {
    EXPECT_EQ(Process("$(name) ${1}"), "$(name) ${1}");
}

TEST(FormatProvidersTest, AreCalledInTheOrderOfRegistration) {
    const ProviderGuard first(&AppendB);
    const ProviderGuard second(&AppendA);
    EXPECT_EQ(Process("x"), "xba");
}

TEST(FormatProvidersTest, RegisteredTwiceAreListedOnceAndLast) {
    const ProviderGuard first(&AppendA);
    EXPECT_EQ(Process("x"), "xa");
    FormatProviders::Instance().AddStringProvider(&AppendA);
    EXPECT_EQ(Process("x"), "xa");

    const ProviderGuard second(&AppendB);
    EXPECT_EQ(Process("x"), "xab");
    FormatProviders::Instance().AddStringProvider(&AppendA);
    EXPECT_EQ(Process("x"), "xba");
}

TEST(FormatProvidersTest, AreNotCalledOnceTheTextIsEmpty) {
    const ProviderGuard first(&AppendA);
    EXPECT_EQ(Process(""), "");
    const ProviderGuard second(&Clear);
    const ProviderGuard third(&AppendB);
    EXPECT_EQ(Process("x"), "");
}

TEST(FormatProvidersTest, RemovedLeaveTheOthersInPlace) {
    const ProviderGuard first(&AppendA);
    const ProviderGuard second(&AppendB);
    FormatProviders::Instance().RemoveStringProvider(&AppendA);
    FormatProviders::Instance().RemoveStringProvider(&Clear);
    EXPECT_EQ(Process("x"), "xb");
}

std::string& RenderFirst(std::string& target, const Core::IInterface&) {
    return target += "first ";
}

std::string& RenderSecond(std::string& target, const Core::IInterface&) {
    return target += "second ";
}

/// Something to refer to: the providers of these tests do not look at the value, whose class
/// belongs to a layer above.
const Core::IInterface& AnyObject() {
    static const char storage = 0;
    return reinterpret_cast<const Core::IInterface&>(storage);
}

TEST(FormatProvidersTest, GiveTheTargetOfAnObjectBackUntouchedWhileNoneIsRegistered) {
    std::string target = "target";
    EXPECT_EQ(&FormatProviders::Instance().ProcessObject(target, AnyObject()), &target);
    EXPECT_EQ(target, "target");
}

TEST(FormatProvidersTest, RenderAnObjectInTheOrderOfRegistration) {
    auto& providers = FormatProviders::Instance();
    providers.AddObjectProvider(RenderFirst);
    providers.AddObjectProvider(RenderSecond);
    providers.AddObjectProvider(RenderFirst);
    std::string target;
    EXPECT_EQ(&providers.ProcessObject(target, AnyObject()), &target);
    EXPECT_EQ(target, "second first ");
    providers.RemoveObjectProvider(RenderFirst);
    providers.RemoveObjectProvider(RenderSecond);
    target.clear();
    providers.ProcessObject(target, AnyObject());
    EXPECT_EQ(target, "");
}

TEST(FormatProvidersTest, AreOneListForAllThreads) {
    std::array<FormatProviders*, 4> seen{};
    std::array<std::thread, 4> threads;
    for (std::size_t i = 0; i < threads.size(); ++i)
        threads[i] = std::thread([&seen, i] { seen[i] = &FormatProviders::Instance(); });
    for (std::thread& thread : threads)
        thread.join();
    for (const FormatProviders* instance : seen)
        EXPECT_EQ(instance, &FormatProviders::Instance());
}

} // namespace
} // namespace Utilities
