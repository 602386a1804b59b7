#include "Tools/SarvexTool/Bench/Run/OutputQueue.h"

#include <gtest/gtest.h>

#include <future>
#include <sstream>

namespace Bench {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds aMoment(20);
/// As long as no test takes.
constexpr milliseconds patience(60'000);

/// A stream whose reader begins to read at some time.
class LateStream : private std::stringbuf, public std::ostream {
public:
    LateStream() : std::ostream(static_cast<std::stringbuf*>(this)) {}

    void BeginToRead() { m_isRead.set_value(); }
    std::string Text() const { return str(); }

private:
    std::streamsize xsputn(const char* bytes, std::streamsize size) override {
        m_mayWrite.wait();
        return std::stringbuf::xsputn(bytes, size);
    }

    std::promise<void> m_isRead;
    std::shared_future<void> m_mayWrite = m_isRead.get_future().share();
};

class OutputQueueTest : public testing::Test {
protected:
    OutputQueue queue;
};

TEST_F(OutputQueueTest, NobodyWaitsForAReaderThatDoesNotReadAndItGetsAllInOrder) {
    LateStream late;
    std::string expected;
    {
        QueuedStream stream(queue, late);
        for (int line = 0; line < 1000; ++line) {
            stream << "line " << line << '\n' << std::flush;
            expected += "line " + std::to_string(line) + "\n";
        }
        EXPECT_FALSE(queue.IsEmpty());
        EXPECT_FALSE(queue.WaitUntilEmpty(aMoment));
        late.BeginToRead();
        EXPECT_TRUE(queue.WaitUntilEmpty(patience));
        EXPECT_TRUE(queue.IsEmpty());
    }
    EXPECT_EQ(late.Text(), expected);
}

TEST_F(OutputQueueTest, TwoStreamsThatLeadToOnePlaceKeepTheirOrder) {
    std::ostringstream place;
    std::ostream other(place.rdbuf());
    QueuedStream out(queue, place);
    QueuedStream err(queue, other);
    err.tie(&out);
    err.setf(std::ios_base::unitbuf);
    out << "a" << 1;
    err << "b" << 2;
    out << "c";
    err << "d";
    EXPECT_TRUE(queue.WaitUntilEmpty(patience));
    EXPECT_EQ(place.str(), "a1b2cd");
}

TEST_F(OutputQueueTest, WhatIsNotFlushedIsWrittenAtTheEnd) {
    std::ostringstream target;
    { QueuedStream(queue, target) << "words"; }
    EXPECT_TRUE(queue.WaitUntilEmpty(patience));
    EXPECT_EQ(target.str(), "words");
}

TEST_F(OutputQueueTest, ItsEndWaitsUntilAllIsWritten) {
    LateStream late;
    std::thread reader;
    {
        OutputQueue own;
        own.Put({&late, "one ", nullptr});
        own.Put({&late, "two", nullptr});
        reader = std::thread([&late] { late.BeginToRead(); });
    }
    EXPECT_EQ(late.Text(), "one two");
    reader.join();
}

TEST_F(OutputQueueTest, WhatAStreamDoesNotTakeGoesElsewhereIfItMay) {
    std::ostream broken(nullptr);
    std::ostringstream target;
    QueuedStream lost(queue, broken);
    QueuedStream saved(queue, broken, [&](std::string bytes) {
        queue.Put({&target, std::move(bytes), nullptr});
    });
    lost << "lost" << std::flush;
    saved << "saved" << std::flush;
    EXPECT_TRUE(queue.WaitUntilEmpty(patience));
    EXPECT_EQ(target.str(), "saved");
    EXPECT_FALSE(broken);
    EXPECT_TRUE(lost);
}

TEST_F(OutputQueueTest, WhatIsNotBeingWrittenYetCanBeTakenBack) {
    LateStream late;
    std::ostringstream other;
    queue.Put({&late, "1", nullptr});
    queue.Put({&other, "a", nullptr});
    queue.Put({&late, "2", nullptr});
    queue.Put({&other, "b", nullptr});
    EXPECT_TRUE(queue.Withdraw(late).empty());
    const std::deque<OutputQueue::Text> withdrawn = queue.Withdraw(other);
    ASSERT_EQ(withdrawn.size(), 2u);
    EXPECT_EQ(withdrawn[0].bytes + withdrawn[1].bytes, "ab");
    late.BeginToRead();
    EXPECT_TRUE(queue.WaitUntilEmpty(patience));
    EXPECT_EQ(late.Text(), "12");
    EXPECT_EQ(other.str(), "");
    EXPECT_TRUE(queue.Withdraw(other).empty());
}

} // namespace
} // namespace Bench
