#include "Modules/xFramework/Utilities/FormatProviders.h"

#include "tests/Modules/xFramework/Utilities/ProviderGuard.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <thread>

namespace Core {
class IInterface {};
} // namespace Core

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

TEST(FormatProviders, LeaveTextAsItIsWhileNoneIsRegistered) {
    EXPECT_EQ(Process("$(name) ${1}"), "$(name) ${1}");
}

TEST(FormatProviders, AreCalledInTheOrderOfRegistration) {
    const ProviderGuard first(&AppendB);
    const ProviderGuard second(&AppendA);
    EXPECT_EQ(Process("x"), "xba");
}

TEST(FormatProviders, RegisteredTwiceStandOnceAndLast) {
    const ProviderGuard first(&AppendA);
    EXPECT_EQ(Process("x"), "xa");
    FormatProviders::Instance().AddStringProvider(&AppendA);
    EXPECT_EQ(Process("x"), "xa");

    const ProviderGuard second(&AppendB);
    EXPECT_EQ(Process("x"), "xab");
    FormatProviders::Instance().AddStringProvider(&AppendA);
    EXPECT_EQ(Process("x"), "xba");
}

TEST(FormatProviders, AreNotCalledOnceTheTextIsEmpty) {
    const ProviderGuard first(&AppendA);
    EXPECT_EQ(Process(""), "");
    const ProviderGuard second(&Clear);
    const ProviderGuard third(&AppendB);
    EXPECT_EQ(Process("x"), "");
}

TEST(FormatProviders, RemovedLeaveTheOthersInPlace) {
    const ProviderGuard first(&AppendA);
    const ProviderGuard second(&AppendB);
    FormatProviders::Instance().RemoveStringProvider(&AppendA);
    FormatProviders::Instance().RemoveStringProvider(&Clear);
    EXPECT_EQ(Process("x"), "xb");
}

TEST(FormatProviders, GiveTheTargetOfAnObjectBackUntouched) {
    const Core::IInterface value;
    std::string target = "target";
    EXPECT_EQ(&FormatProviders::Instance().ProcessObject(target, value), &target);
    EXPECT_EQ(target, "target");
}

TEST(FormatProviders, AreOneListForAllThreads) {
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
