#include "Modules/xFramework/Utilities/Exception.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>

namespace Utilities {
namespace {

/// Counts how many of it there are.
class CountedLocation : public ErrorLocation {
public:
    CountedLocation(int& alive, std::uint32_t line)
        : ErrorLocation("file", line, "function"), m_alive(alive) {
        ++m_alive;
    }
    ~CountedLocation() override { --m_alive; }

private:
    int& m_alive;
};

TEST(Exception, CopiesItsMessage) {
    std::string message = "Incompatible value type";
    const Exception exception(message);
    message.assign(message.size(), '#');
    EXPECT_STREQ(exception.what(), "Incompatible value type");
}

TEST(Exception, HasAnEmptyTextWhenTheMessageIsEmpty) {
    EXPECT_STREQ(Exception("").what(), "");
}

TEST(Exception, HasNoLocationAtFirst) {
    EXPECT_EQ(Exception("message").GetLocation(), nullptr);
}

TEST(Exception, DeletesItsLocationWithItself) {
    int alive = 0;
    {
        Exception exception("message");
        exception.SetLocation(new CountedLocation(alive, 1));
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(Exception, KeepsOnlyTheLastLocation) {
    int alive = 0;
    Exception exception("message");
    exception.SetLocation(new CountedLocation(alive, 1));
    exception.SetLocation(new CountedLocation(alive, 2));
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(exception.GetLocation()->GetLine(), 2u);
    exception.SetLocation(nullptr);
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(exception.GetLocation(), nullptr);
}

TEST(Exception, IsDeletedThroughItsStandardBase) {
    int alive = 0;
    auto exception = std::make_unique<Exception>("message");
    exception->SetLocation(new CountedLocation(alive, 1));
    std::unique_ptr<std::exception> base = std::move(exception);
    EXPECT_STREQ(base->what(), "message");
    base.reset();
    EXPECT_EQ(alive, 0);
}

/// Outlives those that delete it, so that two can.
class LastingLocation : public ErrorLocation {
public:
    using ErrorLocation::ErrorLocation;

    void operator delete(LastingLocation* /*location*/, std::destroying_delete_t) {}
};

TEST(Exception, CopyPointsAtTheLocationOfItsSource) {
    LastingLocation location("file", 1, "function");
    Exception source("message");
    source.SetLocation(&location);
    const Exception copy(source);
    EXPECT_EQ(copy.GetLocation(), &location);
    EXPECT_EQ(source.GetLocation(), &location);
    EXPECT_STREQ(copy.what(), "message");
}

/// How a handler of the given type sees a framework exception.
template <typename Handled>
bool IsCaughtAs() {
    auto exception = std::make_unique<Exception>("message");
    Exception* const thrown = exception.get();
    try {
        throw thrown;
    } catch (Handled* pCaught) {
        return static_cast<void*>(thrown) == static_cast<void*>(pCaught);
    } catch (...) {
        return false;
    }
}

TEST(Exception, IsCaughtAsAPointerToEachOfItsBases) {
    EXPECT_TRUE(IsCaughtAs<Exception>());
    EXPECT_TRUE(IsCaughtAs<std::exception>());
    EXPECT_TRUE(IsCaughtAs<void>());
    EXPECT_FALSE(IsCaughtAs<ErrorLocation>());
}

TEST(Exception, CountsThoseThatLive) {
    const std::int64_t before = Exception::GetLiveCount();
    {
        const Exception first("first");
        const Exception copy(first);
        EXPECT_EQ(Exception::GetLiveCount(), before + 2);
    }
    EXPECT_EQ(Exception::GetLiveCount(), before);
}

} // namespace
} // namespace Utilities
