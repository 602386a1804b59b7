#include "Modules/xFramework/Utilities/LogPrinter.h"

#include "Modules/xFramework/Utilities/Log.h"
#include "tests/Support/TestMemory.h"

#include <gmock/gmock.h>

#include <new>
#include <string>
#include <vector>

namespace Utilities {
namespace {

using TestSupport::CountMemoryPieces;
using TestSupport::FailingRequest;

using testing::ElementsAre;
using testing::IsEmpty;

/// Writes "level|file|function|message" and counts its calls.
class BarredFormatter : public ILogFormatter {
public:
    void Format(std::uint32_t level, const char* file, const char* function,
                const std::string& message, std::ostream& out) override {
        ++calls;
        out << level << '|' << file << '|' << function << '|' << message;
    }
    int calls = 0;
};

/// Writes the message alone.
class PlainFormatter : public ILogFormatter {
public:
    void Format(std::uint32_t, const char*, const char*, const std::string& message,
                std::ostream& out) override {
        out << message;
    }
};

/// Puts its name before each line, in a list that several devices may share.
class NamedDevice : public ILogDevice {
public:
    NamedDevice(std::string name, std::vector<std::string>& lines) : m_name(name), m_lines(lines) {}
    void Write(const std::string& line) override { m_lines.push_back(m_name + ": " + line); }

private:
    std::string m_name;
    std::vector<std::string>& m_lines;
};

class MessageFilter : public ILogFilter {
public:
    explicit MessageFilter(std::string accepted) : m_accepted(accepted) {}
    bool Accept(std::uint32_t level, const char* file, const char* function,
                const std::string& message) override {
        asked.push_back(std::to_string(level) + "|" + file + "|" + function + "|" + message);
        return message == m_accepted;
    }
    std::vector<std::string> asked;

private:
    std::string m_accepted;
};

class LogPrinterTest : public testing::Test {
protected:
    void AddChannel(const std::string& name, ILogDevice* device) {
        printer.AddDevice(name, device);
        printer.SetFormatter(name, &plain);
        printer.SetLevelMask(name, LogLevel::All);
    }

    void Send(const std::string& message, std::uint32_t level = LogLevel::Error) {
        printer.Dispatch(level, "file", 7, "function", message);
    }

    std::vector<std::string> lines;
    NamedDevice first{"first", lines};
    NamedDevice second{"second", lines};
    NamedDevice third{"third", lines};
    PlainFormatter plain;
    LogPrinter printer;
};

TEST_F(LogPrinterTest, FormatsARecordWithoutItsLineNumber) {
    BarredFormatter barred;
    AddChannel("a", &first);
    printer.SetFormatter("a", &barred);
    printer.Dispatch(LogLevel::Info, "src/File", 123, "Class::Function", "message");
    EXPECT_THAT(lines, ElementsAre("first: 4|src/File|Class::Function|message"));
}

TEST_F(LogPrinterTest, SendsARecordToEveryChannelInTheOrderOfAdding) {
    AddChannel("z", &first);
    AddChannel("a", &second);
    AddChannel("m", &third);
    Send("x");
    EXPECT_THAT(lines, ElementsAre("first: x", "second: x", "third: x"));
}

TEST_F(LogPrinterTest, LeavesOutAChannelWithoutFormatter) {
    printer.AddDevice("a", &first);
    printer.SetLevelMask("a", LogLevel::All);
    AddChannel("b", &second);
    Send("x");
    EXPECT_THAT(lines, ElementsAre("second: x"));
}

TEST_F(LogPrinterTest, LeavesOutAChannelWhoseMaskWasNeverSet) {
    printer.AddDevice("a", &first);
    printer.SetFormatter("a", &plain);
    Send("x", 0xFFFFFFFF);
    EXPECT_THAT(lines, IsEmpty());
}

struct MaskCase {
    std::uint32_t mask;
    std::uint32_t level;
    bool isWritten;
};

TEST_F(LogPrinterTest, SendsARecordWhereLevelAndMaskShareABit) {
    AddChannel("a", &first);
    const std::vector<MaskCase> cases{{15, 1, true},
                                      {15, 2, true},
                                      {15, 4, true},
                                      {15, 8, true},
                                      {15, 16, false},
                                      {31, 16, true},
                                      {1, 2, false},
                                      {1, 3, true},
                                      {14, 1, false},
                                      {15, 0, false},
                                      {0x80000000, 0x80000000, true}};
    for (const MaskCase& each : cases) {
        SCOPED_TRACE(std::to_string(each.mask) + " and " + std::to_string(each.level));
        lines.clear();
        printer.SetLevelMask("a", each.mask);
        Send("x", each.level);
        EXPECT_EQ(!lines.empty(), each.isWritten);
    }
}

TEST_F(LogPrinterTest, LetsAFilterVetoRecordsOfItsChannelOnly) {
    MessageFilter filter("wanted");
    AddChannel("a", &first);
    AddChannel("b", &second);
    printer.SetFilter("a", &filter);
    Send("wanted");
    Send("unwanted");
    EXPECT_THAT(lines, ElementsAre("first: wanted", "second: wanted", "second: unwanted"));
    EXPECT_THAT(filter.asked, ElementsAre("1|file|function|wanted", "1|file|function|unwanted"));
}

TEST_F(LogPrinterTest, AsksMaskThenFilterThenFormatter) {
    MessageFilter filter("never");
    BarredFormatter barred;
    AddChannel("a", &first);
    printer.SetFormatter("a", &barred);
    printer.SetFilter("a", &filter);
    printer.SetLevelMask("a", LogLevel::Error);
    Send("x", LogLevel::Info);
    EXPECT_THAT(filter.asked, IsEmpty());
    Send("x", LogLevel::Error);
    EXPECT_EQ(filter.asked.size(), 1u);
    EXPECT_EQ(barred.calls, 0);

    printer.SetFormatter("a", nullptr);
    Send("x", LogLevel::Error);
    EXPECT_EQ(filter.asked.size(), 2u);
}

TEST_F(LogPrinterTest, KeepsSendingToAChannelWhoseNameWasTakenOver) {
    AddChannel("a", &first);
    AddChannel("a", &second);
    Send("both");
    // The name now leads to the second channel alone.
    printer.SetLevelMask("a", 0);
    Send("old one");
    printer.RemoveDevice("a");
    Send("still the old one");
    printer.RemoveDevice("a");
    Send("and for good");
    EXPECT_THAT(lines, ElementsAre("first: both", "second: both", "first: old one",
                                   "first: still the old one", "first: and for good"));
}

TEST_F(LogPrinterTest, StartsAChannelThatTakesANameOverWithNothingSet) {
    AddChannel("a", &first);
    printer.AddDevice("a", &second);
    Send("x");
    EXPECT_THAT(lines, ElementsAre("first: x"));
}

TEST_F(LogPrinterTest, RemovesTheChannelOfTheNameOnly) {
    AddChannel("a", &first);
    AddChannel("b", &second);
    AddChannel("c", &third);
    printer.RemoveDevice("b");
    printer.RemoveDevice("nobody");
    Send("x");
    EXPECT_THAT(lines, ElementsAre("first: x", "third: x"));
}

TEST_F(LogPrinterTest, ForgetsTheNameOfARemovedChannel) {
    AddChannel("a", &first);
    printer.RemoveDevice("a");
    printer.SetLevelMask("a", 0);
    printer.RemoveDevice("a");
    AddChannel("b", &second);
    Send("x");
    EXPECT_THAT(lines, ElementsAre("second: x"));
}

TEST_F(LogPrinterTest, IgnoresNamesThatItDoesNotKnow) {
    BarredFormatter barred;
    MessageFilter filter("never");
    AddChannel("a", &first);
    printer.SetFormatter("b", &barred);
    printer.SetLevelMask("A", 0);
    printer.SetFilter("", &filter);
    Send("x");
    EXPECT_THAT(lines, ElementsAre("first: x"));
}

TEST_F(LogPrinterTest, WritesAnEmptyLineForAnEmptyMessage) {
    AddChannel("a", &first);
    Send("");
    EXPECT_THAT(lines, ElementsAre("first: "));
}

/// Lets each request for memory of AddDevice fail in its turn; returns how many failed before it
/// could finish.
std::size_t AddWithEveryFailure(LogPrinter& printer, const std::string& name, ILogDevice* device) {
    for (std::size_t request = 0;; ++request) {
        const std::int64_t pieces = CountMemoryPieces();
        const FailingRequest failure(request);
        try {
            printer.AddDevice(name, device);
            return request;
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(CountMemoryPieces(), pieces) << "request " << request;
        }
    }
}

TEST_F(LogPrinterTest, IsAsItWasWhenMemoryRunsOutWhileADeviceIsAdded) {
    // Too long to be held without memory of its own.
    const std::string name(100, 'n');
    AddChannel("a", &first);
    EXPECT_GE(AddWithEveryFailure(printer, name, &second), 4U);
    printer.SetFormatter(name, &plain);
    printer.SetLevelMask(name, LogLevel::All);
    Send("x");
    EXPECT_THAT(lines, ElementsAre("first: x", "second: x"));
}

TEST_F(LogPrinterTest, LeavesANameWithItsChannelWhenMemoryRunsOutWhileItIsTakenOver) {
    const std::string name(100, 'n');
    AddChannel(name, &first);
    {
        const FailingRequest failure(0);
        EXPECT_THROW(printer.AddDevice(name, &second), std::bad_alloc);
    }
    Send("x");
    printer.SetLevelMask(name, 0);
    Send("y");
    EXPECT_THAT(lines, ElementsAre("first: x"));
    EXPECT_GE(AddWithEveryFailure(printer, name, &second), 3U);
}

TEST_F(LogPrinterTest, WithoutChannelsDropsEverything) {
    Send("x");
    EXPECT_THAT(lines, IsEmpty());
}

} // namespace
} // namespace Utilities
