#include "Modules/xFramework/OSAL/CriticalSection.h"
#include "Modules/xFramework/SyncObjectsOSAL/CriticalSectionOSAL.h"
#include "Modules/xFramework/Utilities/BriefLogFormatter.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <sstream>
#include <string>
#include <thread>

namespace OSAL {
namespace {

using SyncObjectsOSAL::CriticalSectionOSAL;

constexpr int rounds = 20000;

/// Runs the action in two threads at once, and waits for both.
template <typename Action>
void RunTwice(Action action) {
    std::array<std::thread, 2> threads{std::thread(action), std::thread(action)};
    for (std::thread& thread : threads)
        thread.join();
}

TEST(CommonCriticalSectionTest, LetsOneThreadInAtATime) {
    CriticalSectionOSAL section;
    int inside = 0;
    int entries = 0;
    int overlaps = 0;
    RunTwice([&] {
        for (int i = 0; i < rounds; ++i) {
            section.Enter();
            overlaps += ++inside == 1 ? 0 : 1;
            ++entries;
            --inside;
            section.Leave();
        }
    });
    EXPECT_EQ(overlaps, 0);
    EXPECT_EQ(entries, 2 * rounds);
}

TEST(CommonCriticalSectionTest, LetsItsHolderInAgain) {
    CriticalSectionOSAL section;
    int value = 0;
    RunTwice([&] {
        for (int i = 0; i < rounds; ++i) {
            section.Enter();
            section.Enter();
            ++value;
            section.Leave();
            ++value;
            section.Leave();
        }
    });
    EXPECT_EQ(value, 4 * rounds);
}

TEST(CommonCriticalSectionTest, StaysClosedUntilTheLastEntryIsGivenBack) {
    CriticalSectionOSAL section;
    std::atomic<bool> started{false};
    std::atomic<bool> entered{false};
    section.Enter();
    section.Enter();
    std::thread other([&] {
        started = true;
        section.Enter();
        entered = true;
        section.Leave();
    });
    while (!started)
        std::this_thread::yield();
    section.Leave();
    for (int i = 0; i < 1000; ++i)
        std::this_thread::yield();
    EXPECT_FALSE(entered);
    section.Leave();
    other.join();
    EXPECT_TRUE(entered);
}

TEST(CommonCriticalSectionTest, IsCreatedAndDestroyedByTheSystem) {
    CriticalSection* const section = CreateCriticalSection();
    ASSERT_NE(section, nullptr);
    EnterCriticalSection(section);
    LeaveCriticalSection(section);
    DestroyCriticalSection(section);
}

/// How many lines of the text are not one of the two whole ones.
int CountBrokenLines(const std::string& text, const std::string& one, const std::string& other) {
    std::istringstream stream(text);
    int broken = 0;
    for (std::string line; std::getline(stream, line);)
        broken += line == one || line == other ? 0 : 1;
    return broken;
}

TEST(CommonCriticalSectionTest, KeepsTheLinesOfTheLogWhole) {
    const std::string one(50, 'a');
    const std::string other(50, 'b');
    std::ostringstream stream;
    Utilities::StreamLogDevice device(&stream, new CriticalSectionOSAL);
    std::atomic<int> threads{0};
    RunTwice([&] {
        const std::string& line = threads++ == 0 ? one : other;
        for (int i = 0; i < rounds; ++i)
            device.Write(line);
    });
    EXPECT_EQ(stream.str().size(), 2u * rounds * (one.size() + 1));
    EXPECT_EQ(CountBrokenLines(stream.str(), one, other), 0);
}

} // namespace
} // namespace OSAL
