#include "Modules/xFramework/Utilities/BriefLogFormatter.h"

#include <gmock/gmock.h>

#include <iomanip>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

namespace Utilities {
namespace {

using testing::ElementsAre;
using Events = std::vector<std::string>;

struct LineCase {
    std::uint32_t level;
    std::string function;
    std::string message;
    std::string line;
};

TEST(BriefLogFormatterTest, WritesTagFunctionAndMessageInColumns) {
    const std::string blanks40(40, ' ');
    const std::string name40(40, 'n');
    const std::string name41(41, 'n');
    const std::vector<LineCase> cases{
        {1, "f", "message", "[OEMERROR]| f" + std::string(39, ' ') + " | message"},
        {2, "f", "message", "[OEMWARNING]| f" + std::string(39, ' ') + " | message"},
        {4, "DynamicTest::ProcessHeaderTestFile", "--------------------->Enter",
         "[OEMINFO] | DynamicTest::ProcessHeaderTestFile       | --------------------->Enter"},
        {8, "f", "message", "[OEMTRACE]| f" + std::string(39, ' ') + " | message"},
        {16, "f", "message", "          | f" + std::string(39, ' ') + " | message"},
        {0, "f", "message", "          | f" + std::string(39, ' ') + " | message"},
        {3, "f", "message", "          | f" + std::string(39, ' ') + " | message"},
        {1, "", "", "[OEMERROR]| " + blanks40 + " | "},
        {1, name40, "message", "[OEMERROR]| " + name40 + " | message"},
        {1, name41, "message", "[OEMERROR]| " + name41 + " | message"},
        {1, name40, "two\nlines", "[OEMERROR]| " + name40 + " | two\nlines"}};
    for (const LineCase& each : cases) {
        SCOPED_TRACE(each.line);
        std::ostringstream out;
        BriefLogFormatter().Format(each.level, "file", each.function.c_str(), each.message, out);
        EXPECT_EQ(out.str(), each.line);
    }
}

TEST(BriefLogFormatterTest, PadsWithBlanksWhateverTheStreamsSettings) {
    std::ostringstream out;
    out << std::right << std::hex << std::setfill('*') << std::setw(60);
    BriefLogFormatter().Format(4, "file", "f", "message", out);
    EXPECT_EQ(out.str(), "[OEMINFO] | f" + std::string(39, ' ') + " | message");
}

TEST(BriefLogFormatterTest, LeavesTheStreamsSettingsAsTheyWere) {
    std::ostringstream out;
    out << std::right << std::hex << std::setfill('*') << std::setw(60);
    const std::ios_base::fmtflags flags = out.flags();
    BriefLogFormatter().Format(4, "file", "f", "message", out);
    EXPECT_EQ(out.flags(), flags);
    EXPECT_EQ(out.fill(), '*');
    EXPECT_EQ(out.width(), 60);
    EXPECT_TRUE(out.good());
}

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

TEST(BriefLogFormatterDeviceTest, WritesAndFlushesEachLineInsideItsLock) {
    Events events;
    EventBuffer buffer(events);
    std::ostream stream(&buffer);
    StreamLogDevice device(&stream, new EventLock(events));
    device.Write("first");
    device.Write("");
    EXPECT_THAT(events, ElementsAre("Enter", "[first\n]", "Leave", "Enter", "[\n]", "Leave"));
}

TEST(BriefLogFormatterDeviceTest, DeletesItsLockAndLeavesTheStreamAlone) {
    Events events;
    EventBuffer buffer(events);
    std::ostream stream(&buffer);
    { const StreamLogDevice device(&stream, new EventLock(events)); }
    stream << "still here" << std::flush;
    EXPECT_THAT(events, ElementsAre("deleted", "[still here]"));
}

TEST(BriefLogFormatterDeviceTest, LeavesItsLockWhenTheStreamThrows) {
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
