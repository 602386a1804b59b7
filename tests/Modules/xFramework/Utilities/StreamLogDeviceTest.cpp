#include "Modules/xFramework/Utilities/StreamLogDevice.h"

#include <gmock/gmock.h>

#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

namespace Utilities {
namespace {

using testing::ElementsAre;

using Events = std::vector<std::string>;

/// Notes what is written between two flushes as one event.
class EventBuffer : public std::streambuf {
public:
    explicit EventBuffer(Events& events) : m_events(events) {}

protected:
    int_type overflow(int_type c) override {
        m_text += traits_type::to_char_type(c);
        return c;
    }
    int sync() override {
        m_events.push_back("[" + m_text + "]");
        m_text.clear();
        return 0;
    }

private:
    Events& m_events;
    std::string m_text;
};

class EventLock : public SyncObjectsOSAL::ICriticalSection {
public:
    explicit EventLock(Events& events) : m_events(events) {}
    ~EventLock() override { m_events.emplace_back("deleted"); }
    int Enter() override {
        m_events.emplace_back("Enter");
        return 0;
    }
    int Leave() override {
        m_events.emplace_back("Leave");
        return 0;
    }

private:
    Events& m_events;
};

TEST(StreamLogDevice, WritesAndFlushesEachLineInsideItsLock) {
    Events events;
    EventBuffer buffer(events);
    std::ostream stream(&buffer);
    StreamLogDevice device(&stream, new EventLock(events));
    device.Write("first");
    device.Write("");
    EXPECT_THAT(events, ElementsAre("Enter", "[first\n]", "Leave", "Enter", "[\n]", "Leave"));
}

TEST(StreamLogDevice, DeletesItsLockAndLeavesTheStreamAlone) {
    Events events;
    EventBuffer buffer(events);
    std::ostream stream(&buffer);
    { const StreamLogDevice device(&stream, new EventLock(events)); }
    stream << "still here" << std::flush;
    EXPECT_THAT(events, ElementsAre("deleted", "[still here]"));
}

TEST(StreamLogDevice, LeavesItsLockWhenTheStreamThrows) {
    Events events;
    std::ostream stream(nullptr);
    StreamLogDevice device(&stream, new EventLock(events));
    stream.clear(std::ios::goodbit | std::ios::badbit);
    EXPECT_THROW(stream.exceptions(std::ios::badbit), std::ios_base::failure);
    EXPECT_THROW(device.Write("line"), std::ios_base::failure);
    EXPECT_THAT(events, ElementsAre("Enter", "Leave"));
}

} // namespace
} // namespace Utilities
