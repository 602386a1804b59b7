#include "Modules/xFramework/Streams/lined_streambuf.h"

#include <gmock/gmock.h>

#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace {

using Streams::lined_streambuf;
using testing::ElementsAre;
using testing::IsEmpty;

/// Hands its lines to a list that outlives it.
class ListedLines : public lined_streambuf<> {
public:
    explicit ListedLines(std::vector<std::string>& lines) : m_lines(lines) {}

    using lined_streambuf<>::overflow;
    int flushes = 0;

protected:
    void FlushLine() override {
        ++flushes;
        lined_streambuf<>::FlushLine();
    }
    void OutputLine(const std::string& text) override { m_lines.push_back(text); }

private:
    std::vector<std::string>& m_lines;
};

class lined_streambufTest : public testing::Test {
protected:
    std::vector<std::string> lines;
    ListedLines buffer{lines};
    std::ostream stream{&buffer};
};

struct CutCase {
    std::string text;
    std::vector<std::string> lines;
};

TEST_F(lined_streambufTest, CutsTheTextAtLineFeedsAndDropsEmptyLines) {
    const std::vector<CutCase> cases{{"", {}},
                                     {"\n", {}},
                                     {"\n\n\n", {}},
                                     {"a\n", {"a"}},
                                     {"a\n\nb\n", {"a", "b"}},
                                     {"first line\nsecond line\n", {"first line", "second line"}},
                                     {" \n", {" "}},
                                     {"a\r\nb\r\n", {"a\r", "b\r"}},
                                     {std::string("a\0b\n", 4), {std::string("a\0b", 3)}},
                                     {"\xFF\xFE\n", {"\xFF\xFE"}}};
    for (const CutCase& each : cases) {
        SCOPED_TRACE(each.text);
        lines.clear();
        stream << each.text;
        EXPECT_EQ(lines, each.lines);
        EXPECT_TRUE(stream.good());
    }
}

TEST_F(lined_streambufTest, TextWithoutLineFeedIsHandedOnByAFlush) {
    stream << "half";
    EXPECT_THAT(lines, IsEmpty());
    stream.flush();
    EXPECT_THAT(lines, ElementsAre("half"));
}

TEST_F(lined_streambufTest, AFlushInTheMiddleOfALineCutsIt) {
    stream << "ab" << std::flush << "c\n";
    EXPECT_THAT(lines, ElementsAre("ab", "c"));
}

TEST_F(lined_streambufTest, AFlushWithNothingWrittenDoesNothing) {
    stream << "a\n" << std::flush << std::flush;
    EXPECT_THAT(lines, ElementsAre("a"));
    EXPECT_EQ(buffer.flushes, 1);
}

TEST_F(lined_streambufTest, TheEndOfFileEndsTheLineLikeALineFeed) {
    stream << "a";
    EXPECT_NE(buffer.overflow(std::char_traits<char>::eof()), std::char_traits<char>::eof());
    EXPECT_THAT(lines, ElementsAre("a"));
}

TEST_F(lined_streambufTest, EveryCharacterIsTakenWithSuccess) {
    for (int c = 0; c < 256; ++c) {
        SCOPED_TRACE(c);
        EXPECT_NE(buffer.sputc(static_cast<char>(c)), std::char_traits<char>::eof());
    }
}

TEST_F(lined_streambufTest, NothingCanBeRead) {
    stream << "a";
    std::istream input(&buffer);
    EXPECT_EQ(input.get(), std::char_traits<char>::eof());
    EXPECT_EQ(buffer.sgetc(), std::char_traits<char>::eof());
    EXPECT_TRUE(input.eof());
}

TEST_F(lined_streambufTest, TextThatWasNotFlushedIsDroppedWithTheBuffer) {
    std::vector<std::string> shortLived;
    {
        ListedLines inner(shortLived);
        std::ostream(&inner) << "a\nb";
    }
    EXPECT_THAT(shortLived, ElementsAre("a"));
}

/// Replaces the virtual operations that are between the standard ones and the line.
class ShoutedLines : public lined_streambuf<> {
public:
    std::string lines;

protected:
    int_type ReadChar() override { return '?'; }
    void AppendChar(char c) override {
        lined_streambuf<>::AppendChar(c);
        lined_streambuf<>::AppendChar(c);
    }
    void OutputLine(const std::string& text) override { lines += "[" + text + "]"; }
};

TEST(lined_streambufSubclassTest, DecidesWhatIsReadAndAppended) {
    ShoutedLines buffer;
    std::ostream(&buffer) << "ab\nc\n";
    EXPECT_EQ(buffer.lines, "[aabb][cc]");
    EXPECT_EQ(buffer.sbumpc(), '?');
}

class WideLines : public lined_streambuf<wchar_t> {
public:
    std::vector<std::wstring> lines;

protected:
    void OutputLine(const std::wstring& text) override { lines.push_back(text); }
};

TEST(lined_streambufOfWideCharactersTest, CutsWideText) {
    WideLines buffer;
    std::wostream(&buffer) << L"a\n\nb\n";
    EXPECT_THAT(buffer.lines, ElementsAre(L"a", L"b"));
}

} // namespace
