#include "Modules/xFramework/DebugPrint/CDebugPrint.h"

#include "tests/Support/VirtualSlots.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Writes "context|tag|text" and counts itself.
class BarredFormatter : public IDebugLineFormatter {
public:
    explicit BarredFormatter(int& alive) : m_alive(alive) { ++m_alive; }
    ~BarredFormatter() override { --m_alive; }
    BarredFormatter(const BarredFormatter&) = delete;
    BarredFormatter& operator=(const BarredFormatter&) = delete;

    void FormatLine(const char* context, const char* tag, const char* text, char* buffer,
                    std::size_t size) override {
        roomGiven = size;
        const std::string line = std::string(context) + "|" + tag + "|" + text;
        const std::size_t count = line.copy(buffer, size - 1);
        buffer[count] = '\0';
    }

    std::size_t roomGiven = 0;

private:
    int& m_alive;
};

class ListSink : public IDebugSink {
public:
    void Write(const char* line) override { lines.emplace_back(line); }
    std::vector<std::string> lines;
};

/// Notes its name in a list that several sinks share.
class NamedSink : public IDebugSink {
public:
    NamedSink(std::string name, std::vector<std::string>& order) : m_name(name), m_order(order) {}
    void Write(const char*) override { m_order.push_back(m_name); }

private:
    std::string m_name;
    std::vector<std::string>& m_order;
};

class CDebugPrintTest : public testing::Test {
protected:
    /// One sink that takes all levels.
    void SwitchOn() {
        ASSERT_TRUE(printer.SetFormatter(formatter));
        printer.SetSink(0, &sink);
        printer.SetThreshold(0, 15);
    }

    int formattersAlive = 0;
    BarredFormatter* formatter = new BarredFormatter(formattersAlive);
    ListSink sink;
    CDebugPrint printer;
};

TEST_F(CDebugPrintTest, IsInertUntilAHostConfiguresIt) {
    EXPECT_FALSE(printer.IsEnabled());
    for (int index = 0; index < 3; ++index)
        EXPECT_EQ(printer.GetThreshold(index), 0);
    SwitchOn();
    EXPECT_TRUE(printer.IsEnabled());
}

TEST_F(CDebugPrintTest, TagsEachLevelExactly) {
    const std::vector<std::string> tags{
        "       ",         "[ OEM_ERROR   ] ", "[ OEM_WARNING ] ", "[ OEM_INFO    ] ",
        "[ FATAL_ERROR ]", "[ ERROR1      ]",  "[ ERROR2      ]",  "[ FW_ERROR\t   ]",
        "[ WARNNING1   ]", "[ WARNNING2   ]",  "[ FW_WRNNING  ]",  "[ INFO0       ]",
        "[ LL_INFO1    ]", "[ INFO2       ]",  "[ INFO3       ]",  "[ FW_INFO     ]"};
    SwitchOn();
    for (std::size_t level = 0; level < tags.size(); ++level) {
        SCOPED_TRACE(level);
        sink.lines.clear();
        printer.PrintText("Place", static_cast<std::int32_t>(level), "text");
        EXPECT_THAT(sink.lines, ElementsAre("Place|" + tags[level] + "|text"));
    }
}

TEST_F(CDebugPrintTest, TagsALevelOutsideTheTableLikeLevelZero) {
    SwitchOn();
    printer.SetThreshold(0, 1000);
    printer.PrintText("Place", -1, "below");
    printer.PrintText("Place", 16, "above");
    EXPECT_THAT(sink.lines, ElementsAre("Place|       |below", "Place|       |above"));
}

struct ThresholdCase {
    std::int32_t threshold;
    std::int32_t level;
    bool isPrinted;
};

TEST_F(CDebugPrintTest, SendsARecordToASinkWhoseThresholdIsAtLeastItsLevel) {
    SwitchOn();
    for (const ThresholdCase& each :
         std::vector<ThresholdCase>{{5, 4, true}, {5, 5, true}, {5, 6, false}, {-3, 0, false}}) {
        SCOPED_TRACE(each.level);
        sink.lines.clear();
        printer.SetThreshold(0, each.threshold);
        printer.PrintText("Place", each.level, "text");
        EXPECT_EQ(!sink.lines.empty(), each.isPrinted);
    }
}

TEST_F(CDebugPrintTest, AsksTheThreeSinksInTheirOrderEachForItself) {
    std::vector<std::string> order;
    NamedSink first("0", order);
    NamedSink second("1", order);
    NamedSink third("2", order);
    SwitchOn();
    printer.SetSink(2, &third);
    printer.SetSink(1, &second);
    printer.SetSink(0, &first);
    printer.SetThreshold(1, 3);
    printer.SetThreshold(2, 8);
    printer.PrintText("Place", 3, "for all");
    printer.PrintText("Place", 8, "for 0 and 2");
    printer.SetSink(0, nullptr);
    printer.PrintText("Place", 8, "for 2");
    EXPECT_THAT(order, ElementsAre("0", "1", "2", "0", "2", "2"));
}

TEST_F(CDebugPrintTest, IsSwitchedOffByAnySinksThresholdZero) {
    SwitchOn();
    printer.SetThreshold(2, 0);
    EXPECT_FALSE(printer.IsEnabled());
    EXPECT_EQ(printer.GetThreshold(0), 15);
    printer.PrintText("Place", 1, "lost");
    EXPECT_THAT(sink.lines, IsEmpty());

    printer.SetThreshold(1, -1);
    EXPECT_TRUE(printer.IsEnabled());
    printer.PrintText("Place", 1, "printed");
    EXPECT_THAT(sink.lines, ElementsAre("Place|[ OEM_ERROR   ] |printed"));
}

TEST_F(CDebugPrintTest, PrintsNothingWithoutAFormatter) {
    SwitchOn();
    EXPECT_TRUE(printer.SetFormatter(nullptr));
    printer.PrintText("Place", 1, "text");
    EXPECT_TRUE(printer.IsEnabled());
    EXPECT_THAT(sink.lines, IsEmpty());
}

TEST_F(CDebugPrintTest, KeepsTheFirstFormatterUntilItIsCleared) {
    SwitchOn();
    auto second = std::make_unique<BarredFormatter>(formattersAlive);
    EXPECT_FALSE(printer.SetFormatter(second.get()));
    printer.PrintText("Place", 1, "text");
    EXPECT_EQ(second->roomGiven, 0u);
    EXPECT_EQ(formattersAlive, 2);

    EXPECT_TRUE(printer.SetFormatter(nullptr));
    EXPECT_EQ(formattersAlive, 1);
    BarredFormatter* const taken = second.release();
    EXPECT_TRUE(printer.SetFormatter(taken));
    printer.PrintText("Place", 1, "text");
    EXPECT_EQ(taken->roomGiven, 4096u);
}

TEST_F(CDebugPrintTest, DeletesItsFormatterWhenItIsDestroyed) {
    printer.SetFormatter(formatter);
    {
        CDebugPrint shortLived;
        shortLived.SetFormatter(new BarredFormatter(formattersAlive));
        EXPECT_EQ(formattersAlive, 2);
    }
    EXPECT_EQ(formattersAlive, 1);
}

TEST_F(CDebugPrintTest, GivesTheFormatterABufferOf4096Bytes) {
    SwitchOn();
    const std::string text(5000, 'x');
    printer.PrintText("", 4, text.c_str());
    const std::string head = "|[ FATAL_ERROR ]|";
    EXPECT_EQ(formatter->roomGiven, 4096u);
    EXPECT_THAT(sink.lines, ElementsAre(head + std::string(4095 - head.size(), 'x')));
}

TEST_F(CDebugPrintTest, PassesTextOnAsItIs) {
    SwitchOn();
    printer.PrintText("Place", 1, "100 %s %n");
    EXPECT_THAT(sink.lines, ElementsAre("Place|[ OEM_ERROR   ] |100 %s %n"));
}

TEST_F(CDebugPrintTest, FormatsInTheMannerOfPrintf) {
    SwitchOn();
    printer.Print("Place", 2, "%s on port %d: %5.1f dBm", "vemo", 8738, 17.5);
    EXPECT_THAT(sink.lines, ElementsAre("Place|[ OEM_WARNING ] |vemo on port 8738:  17.5 dBm"));
}

/// Shows how long the text is that reaches the formatter.
class MeasuringFormatter : public IDebugLineFormatter {
public:
    void FormatLine(const char*, const char*, const char* text, char* buffer,
                    std::size_t size) override {
        const std::string length = std::to_string(std::string(text).size());
        buffer[length.copy(buffer, size - 1)] = '\0';
    }
};

TEST_F(CDebugPrintTest, CutsAFormattedTextAfter4095Characters) {
    SwitchOn();
    printer.SetFormatter(nullptr);
    printer.SetFormatter(new MeasuringFormatter);
    for (const std::size_t length : {0u, 4094u, 4095u, 4096u, 5000u})
        printer.Print("Place", 1, "%s", std::string(length, 'x').c_str());
    EXPECT_THAT(sink.lines, ElementsAre("0", "4094", "4095", "4095", "4095"));
}

TEST_F(CDebugPrintTest, PrintsAnEmptyTextWhenTheRunTimeLibraryCannotFormatIt) {
    SwitchOn();
    // There is no 8-bit character for this one in the C locale. Most run-time libraries take that
    // for an error; the others drop the character, and then there is no error to see.
    const std::array<wchar_t, 2> unencodable{static_cast<wchar_t>(0xD7FF), L'\0'};
    std::array<char, 32> text{};
    const bool fails =
        std::snprintf(text.data(), text.size(), "head %ls tail", unencodable.data()) < 0;
    printer.Print("Place", 1, "head %ls tail", unencodable.data());
    EXPECT_THAT(sink.lines,
                ElementsAre("Place|[ OEM_ERROR   ] |" + std::string(fails ? "" : text.data())));
}

TEST_F(CDebugPrintTest, IgnoresSinksThatItDoesNotHave) {
    SwitchOn();
    for (const int index : {-1, 3, 1000}) {
        SCOPED_TRACE(index);
        printer.SetSink(index, &sink);
        printer.SetThreshold(index, 0);
        EXPECT_EQ(printer.GetThreshold(index), 0);
    }
    EXPECT_TRUE(printer.IsEnabled());
    printer.PrintText("Place", 1, "once");
    EXPECT_THAT(sink.lines, ElementsAre("Place|[ OEM_ERROR   ] |once"));
}

TEST(CDebugPrintWithoutFormatterTest, EmptiesABufferWithRoomForThatOnly) {
    CDebugPrint printer;
    std::array<char, 2> line{"x"};
    printer.FormatLine("Place", "[tag]", "text", line.data(), 0);
    EXPECT_STREQ(line.data(), "x");
    printer.FormatLine("Place", "[tag]", "text", line.data(), 1);
    EXPECT_STREQ(line.data(), "");
}

TEST_F(CDebugPrintTest, PassesALineThroughItsFormatter) {
    std::array<char, 32> line{"unwritten"};
    printer.FormatLine("Place", "[tag]", "text", line.data(), line.size());
    EXPECT_STREQ(line.data(), "");
    printer.SetFormatter(formatter);
    printer.FormatLine("Place", "[tag]", "text", line.data(), line.size());
    EXPECT_STREQ(line.data(), "Place|[tag]|text");
    EXPECT_EQ(formatter->roomGiven, 32u);
}

TEST(CDebugPrintInstanceTest, IsOneForTheWholeProcess) {
    EXPECT_EQ(&CDebugPrint::Instance(), &CDebugPrint::Instance());
    EXPECT_FALSE(CDebugPrint::Instance().IsEnabled());
}

TEST(CDebugPrintInterfaceTest, OperationsAreInTheOrderThatOtherModulesAreBuiltAgainst) {
    EXPECT_THAT(TestSupport::VirtualSlots(&IDebugPrint::PrintText, &IDebugPrint::Print,
                                          &IDebugPrint::SetThreshold, &IDebugPrint::GetThreshold,
                                          &IDebugPrint::SetSink, &IDebugPrint::SetFormatter,
                                          &IDebugPrint::FormatLine, &IDebugPrint::IsEnabled),
                ElementsAre(0, 1, 2, 3, 4, 5, 6, 7));
}

} // namespace
