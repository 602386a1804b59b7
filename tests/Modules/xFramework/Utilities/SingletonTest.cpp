#include "Modules/xFramework/Utilities/Singleton.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <thread>

namespace Utilities {
namespace {

/// Counts its constructions; slow enough that threads meet in it.
template <int Which>
class Counted {
public:
    Counted() {
        ++constructions;
        std::this_thread::yield();
    }
    int value = 0;
    static inline std::atomic<int> constructions{0};
};

TEST(SingletonTest, IsCreatedOnFirstUseAndOnlyOnce) {
    using Object = Counted<0>;
    EXPECT_EQ(Object::constructions, 0);
    Singleton<Object>::Instance().value = 5;
    EXPECT_EQ(Singleton<Object>::Instance().value, 5);
    EXPECT_EQ(Object::constructions, 1);
}

TEST(SingletonTest, IsOneForAllThreads) {
    using Object = Counted<1>;
    std::array<Object*, 8> seen{};
    std::array<std::thread, 8> threads;
    for (std::size_t i = 0; i < threads.size(); ++i)
        threads[i] = std::thread([&seen, i] { seen[i] = &Singleton<Object>::Instance(); });
    for (std::thread& thread : threads)
        thread.join();
    for (const Object* object : seen)
        EXPECT_EQ(object, &Singleton<Object>::Instance());
    EXPECT_EQ(Object::constructions, 1);
}

TEST(SingletonWrapperTest, LeadsEveryWrapperToTheSameObject) {
    using Object = Counted<2>;
    EXPECT_EQ(Object::constructions, 0);
    SingletonWrapper<Object> first;
    const SingletonWrapper<Object> second;
    EXPECT_EQ(Object::constructions, 0);
    first.accessObject();
    EXPECT_EQ(Object::constructions, 1);
    first->value = 7;
    EXPECT_EQ(second->value, 7);
    EXPECT_EQ(&first.accessObject(), second.operator->());
    EXPECT_EQ(Object::constructions, 1);
}

} // namespace
} // namespace Utilities
