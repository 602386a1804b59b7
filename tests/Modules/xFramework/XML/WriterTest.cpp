#include "Modules/xFramework/XML/Writer.h"

#include "Modules/xFramework/Utilities/Exception.h"
#include "Modules/xFramework/XML/Base.h"
#include "tests/Support/TestMemory.h"
#include "tests/Support/VirtualSlots.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace XML {
namespace {

const std::string declaration = "<?xml version=\"1.0\" ?>\n";

/// What the events write after the declaration.
std::string Write(const std::function<void(Writer&)>& events) {
    std::ostringstream stream;
    Writer writer(stream);
    writer.StartDocument();
    events(writer);
    writer.EndDocument();
    EXPECT_EQ(stream.str().substr(0, declaration.size()), declaration);
    return stream.str().substr(declaration.size());
}

std::string WriteDocument(const Base& document) {
    std::ostringstream stream;
    Writer writer(stream);
    document.Save(writer);
    return stream.str();
}

TEST(WriterTest, EmptyDocumentIsTheDeclaration) {
    Base document;
    document.GetTopNode()->SetAttribute("a", "1");
    EXPECT_EQ(WriteDocument(document), declaration);
}

TEST(WriterTest, DocumentIsIndentedByATabALevel) {
    Base document;
    Node* root = document.GetTopNode()->AddChild("Root");
    root->SetAttribute("a", "1");
    root->AddChild("C")->SetText("t");
    root->AddChild("B")->SetAttribute("x", "2");

    EXPECT_EQ(WriteDocument(document), "<?xml version=\"1.0\" ?>\n"
                                       "<Root a=\"1\">\n"
                                       "\t<B x=\"2\"/>\n"
                                       "\t<C>t</C>\n"
                                       "</Root>\n");
}

TEST(WriterTest, ElementThreeLevelsDownFollowsTwoTabs) {
    Base document;
    Node* a = document.GetTopNode()->AddChild("Root")->AddChild("A");
    a->AddChild("B");
    a->AddChild("B")->SetText("t");

    EXPECT_EQ(WriteDocument(document), "<?xml version=\"1.0\" ?>\n"
                                       "<Root>\n"
                                       "\t<A>\n"
                                       "\t\t<B/>\n"
                                       "\t\t<B>t</B>\n"
                                       "\t</A>\n"
                                       "</Root>\n");
}

TEST(WriterTest, LevelsCloseOneByOne) {
    EXPECT_EQ(Write([](Writer& writer) {
                  for (const char* name : {"a", "b", "c", "d"})
                      writer.StartElement(name);
                  for (int level = 0; level < 4; ++level)
                      writer.EndElement();
                  writer.StartElement("next");
                  writer.EndElement();
              }),
              "<a>\n"
              "\t<b>\n"
              "\t\t<c>\n"
              "\t\t\t<d/>\n"
              "\t\t</c>\n"
              "\t</b>\n"
              "</a>\n"
              "<next/>\n");
}

TEST(WriterTest, ElementWithoutAnythingIsSelfClosing) {
    EXPECT_EQ(Write([](Writer& writer) {
                  writer.StartElement("name");
                  writer.EndElement();
              }),
              "<name/>\n");
}

TEST(WriterTest, SiblingsAreWrittenInTheOrderOfTheirNames) {
    Base document;
    document.GetTopNode()->AddChild("b");
    document.GetTopNode()->AddChild("a");

    EXPECT_EQ(WriteDocument(document), declaration + "<a/>\n<b/>\n");
}

TEST(WriterTest, MarkupCharactersAreWrittenUnchanged) {
    EXPECT_EQ(Write([](Writer& writer) {
                  writer.StartElement("a");
                  writer.Attribute("x", "<&>\"'\x85");
                  writer.Text("a < b && \"c\"\n");
                  writer.EndElement();
              }),
              "<a x=\"<&>\"'\x85\">a < b && \"c\"\n</a>\n");
}

TEST(WriterTest, EmptyTextMakesAnEndTag) {
    EXPECT_EQ(Write([](Writer& writer) {
                  writer.StartElement("a");
                  writer.Text("");
                  writer.EndElement();
              }),
              "<a></a>\n");
}

// The line ends with the start tag or with a child, not with a text: the first child goes on where
// the text stopped.
TEST(WriterTest, FirstChildAfterATextIsOnItsLine) {
    EXPECT_EQ(Write([](Writer& writer) {
                  writer.StartElement("a");
                  writer.Text("text");
                  for (const char* name : {"b", "c"}) {
                      writer.StartElement(name);
                      writer.EndElement();
                  }
                  writer.EndElement();
              }),
              "<a>text\t<b/>\n"
              "\t<c/>\n"
              "</a>\n");
}

TEST(WriterTest, AttributeAfterTheStartTagBecomesContent) {
    EXPECT_EQ(Write([](Writer& writer) {
                  writer.StartElement("a");
                  writer.Text("t");
                  writer.Attribute("x", "1");
                  writer.EndElement();
              }),
              "<a>t x=\"1\"</a>\n");
}

TEST(WriterTest, EndWithoutAnOpenElementIsIgnored) {
    EXPECT_EQ(Write([](Writer& writer) {
                  writer.EndElement();
                  writer.StartElement("a");
                  writer.EndElement();
                  writer.EndElement();
              }),
              "<a/>\n");
}

TEST(WriterTest, WithoutStartOfDocumentAStartTagIsClosedThatIsNotThere) {
    std::ostringstream stream;
    Writer writer(stream);
    writer.StartElement("a");
    writer.EndElement();

    EXPECT_EQ(stream.str(), ">\n<a/>\n");
}

TEST(WriterTest, StartOfDocumentConcernsTheDocumentAndNoOpenElement) {
    std::ostringstream stream;
    Writer writer(stream);
    writer.StartElement("a");
    writer.StartDocument();
    writer.EndElement();

    EXPECT_EQ(stream.str(), ">\n<a" + declaration + "/>\n");
}

TEST(WriterTest, EveryEventIsOutWhenItReturns) {
    std::ostringstream stream;
    Writer writer(stream);
    std::string expected = declaration;
    const auto expectMore = [&](const std::string& more) {
        EXPECT_EQ(stream.str(), expected += more);
    };

    writer.StartDocument();
    expectMore("");
    writer.StartElement("a");
    expectMore("<a");
    writer.StartElement("b");
    expectMore(">\n\t<b");
    writer.Attribute("x", "1");
    expectMore(" x=\"1\"");
    writer.Text("t");
    expectMore(">t");
    writer.StartElement("c");
    expectMore("\t<c");
    writer.EndElement();
    expectMore("/>\n\t");
    writer.EndElement();
    expectMore("</b>\n");
    writer.EndDocument();
    expectMore("");
}

/// Keeps what was flushed apart from what was not.
class FlushRecorder : public std::stringbuf {
public:
    std::vector<std::string> m_flushed;

protected:
    int sync() override {
        m_flushed.push_back(str());
        str("");
        return 0;
    }
};

TEST(WriterTest, EveryEndOfLineFlushesAndNothingElseDoes) {
    FlushRecorder buffer;
    std::ostream stream(&buffer);
    Writer writer(stream);
    writer.StartDocument();
    for (const char* name : {"a", "b", "c"})
        writer.StartElement(name);
    writer.Text("t");
    for (int level = 0; level < 3; ++level)
        writer.EndElement();
    writer.EndDocument();

    EXPECT_EQ(buffer.m_flushed, (std::vector<std::string>{declaration + "<a>\n", "\t<b>\n",
                                                          "\t\t<c>t</c>\n", "\t</b>\n", "</a>\n"}));
}

/// Keeps the pieces that it is given.
class PieceRecorder : public std::streambuf {
public:
    std::vector<std::string> m_pieces;

protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        m_pieces.emplace_back(text, static_cast<std::size_t>(size));
        return size;
    }
};

TEST(WriterTest, NothingIsNotPutOut) {
    PieceRecorder buffer;
    std::ostream stream(&buffer);
    Writer writer(stream);
    writer.StartDocument();
    for (const char* name : {"a", "b", "c"})
        writer.StartElement(name);
    for (int level = 0; level < 3; ++level)
        writer.EndElement();
    EXPECT_EQ(buffer.m_pieces,
              (std::vector<std::string>{declaration, "<a", ">\n", "\t<b", ">\n", "\t\t<c", "/>\n",
                                        "\t", "</b>\n", "</a>\n"}));
}

TEST(WriterTest, EventThatPutsOutNothingMakesAFailedStreamBadToo) {
    std::ostringstream stream;
    Writer writer(stream);
    writer.StartDocument();
    stream.setstate(std::ios_base::failbit);
    writer.Text("");
    EXPECT_TRUE(stream.bad());
}

TEST(WriterTest, AbortMakesTheStreamBadAndDropsTheRest) {
    std::ostringstream stream;
    Writer writer(stream);
    writer.StartDocument();
    writer.StartElement("a");
    EXPECT_TRUE(stream.good());
    writer.Abort();
    writer.Attribute("x", "1");
    writer.Text("t");
    writer.EndElement();

    EXPECT_TRUE(stream.bad());
    EXPECT_EQ(stream.str(), declaration + "<a");
}

/// Takes that many characters, then fails as asked.
class FullBuffer : public std::streambuf {
public:
    using Failure = std::function<void()>;

    FullBuffer(std::size_t room, Failure failure) : m_room(room), m_failure(std::move(failure)) {}

    std::string m_taken;

protected:
    int_type overflow(int_type character) override {
        if (m_taken.size() < m_room) {
            m_taken += traits_type::to_char_type(character);
            return character;
        }
        m_failure();
        return traits_type::eof();
    }

private:
    std::size_t m_room;
    Failure m_failure;
};

/// Takes everything, and fails as asked when it is flushed.
class StuckBuffer : public std::stringbuf {
public:
    explicit StuckBuffer(FullBuffer::Failure failure) : m_failure(std::move(failure)) {}

protected:
    int sync() override {
        m_failure();
        return -1;
    }

private:
    FullBuffer::Failure m_failure;
};

struct NamedFailure {
    const char* name;
    FullBuffer::Failure fail;
};

/// All that a buffer may do instead of its work. A test whose exception nobody deletes fails, see
/// LiveExceptions.cpp; the sanitizers see the other pointers.
std::vector<NamedFailure> Failures() {
    return {
        {"result", [] {}},
        {"standard exception", [] { throw std::runtime_error("disk full"); }},
        {"stream failure", [] { throw std::ios_base::failure("disk full"); }},
        {"framework pointer", [] { throw new Utilities::Exception("disk full"); }},
        {"standard pointer", [] { throw new std::runtime_error("disk full"); }},
        {"constant pointer", [] { throw static_cast<const std::exception*>(new std::bad_alloc); }},
        {"number", [] { throw 1; }},
        {"text", [] { throw "disk full"; }},
    };
}

/// Runs the test for each failure, on a stream that throws itself and on one that does not.
void ForEachFailure(
    const std::function<void(const FullBuffer::Failure&, std::ios_base::iostate)>& test) {
    for (const NamedFailure& failure : Failures()) {
        for (const std::ios_base::iostate mask : {std::ios_base::goodbit, std::ios_base::badbit}) {
            SCOPED_TRACE(failure.name + std::string(mask == 0 ? "" : ", stream that throws"));
            test(failure.fail, mask);
        }
    }
}

TEST(WriterTest, FailureToWriteShowsInTheStateOfTheStream) {
    Base document;
    document.GetTopNode()->AddChild("a")->AddChild("b");
    ForEachFailure([&document](const FullBuffer::Failure& failure, std::ios_base::iostate mask) {
        for (std::size_t room = 0; room < declaration.size() + 10; ++room) {
            SCOPED_TRACE(room);
            FullBuffer buffer(room, failure);
            std::ostream stream(&buffer);
            stream.exceptions(mask);
            Writer writer(stream);
            EXPECT_NO_THROW(document.Save(writer));
            EXPECT_TRUE(stream.bad());
            EXPECT_EQ(buffer.m_taken, (declaration + "<a>\n\t<b/>\n</a>\n").substr(0, room));
        }
    });
}

TEST(WriterTest, FailureToFlushShowsInTheStateOfTheStream) {
    ForEachFailure([](const FullBuffer::Failure& failure, std::ios_base::iostate mask) {
        StuckBuffer buffer(failure);
        std::ostream stream(&buffer);
        stream.exceptions(mask);
        Writer writer(stream);
        writer.StartDocument();
        writer.StartElement("a");
        EXPECT_TRUE(stream.good());
        EXPECT_NO_THROW(writer.EndElement());
        EXPECT_TRUE(stream.bad());
        EXPECT_NO_THROW(writer.StartElement("b"));
        EXPECT_EQ(buffer.str(), declaration + "<a/>\n");
    });
}

TEST(WriterTest, EventThatFailedIsNotWrittenByTheNextOne) {
    ForEachFailure([](const FullBuffer::Failure& failure, std::ios_base::iostate mask) {
        FullBuffer buffer(declaration.size(), failure);
        std::ostream stream(&buffer);
        stream.exceptions(mask);
        Writer writer(stream);
        writer.StartDocument();
        EXPECT_NO_THROW(writer.StartElement("a"));

        // A stream that is given another buffer is good again.
        std::stringbuf roomy;
        stream.rdbuf(&roomy);
        writer.EndElement();
        EXPECT_EQ(roomy.str(), "/>\n");
    });
}

TEST(WriterTest, LineEndThatFailedIsNotWrittenByTheNextEvent) {
    ForEachFailure([](const FullBuffer::Failure& failure, std::ios_base::iostate mask) {
        StuckBuffer buffer(failure);
        std::ostream stream(&buffer);
        stream.exceptions(mask);
        Writer writer(stream);
        writer.StartDocument();
        for (const char* const name : {"a", "b"})
            writer.StartElement(name);

        std::stringbuf roomy;
        stream.rdbuf(&roomy);
        writer.Text("t");
        writer.EndElement();
        EXPECT_EQ(roomy.str(), ">t</b>\n");
    });
}

TEST(WriterTest, AbortThrowsNothing) {
    std::ostringstream stream;
    stream.exceptions(std::ios_base::badbit);
    Writer writer(stream);
    EXPECT_NO_THROW(writer.Abort());
    EXPECT_TRUE(stream.bad());
}

TEST(WriterTest, LackOfMemoryShowsInTheStateOfTheStream) {
    const std::string longName(100, 'n');
    const std::string longText(300, 't');
    const std::string whole = declaration + "<" + longName + " " + longName + "=\"" + longText +
                              "\">" + longText + "</" + longName + ">\n";
    bool isWhole = false;
    for (std::size_t requests = 0; !isWhole; ++requests) {
        SCOPED_TRACE(requests);
        std::ostringstream next;
        FullBuffer buffer(whole.size(), [] {});
        buffer.m_taken.reserve(whole.size());
        std::ostream stream(&buffer);
        Writer writer(stream);
        {
            const TestSupport::FailingRequest failing(requests);
            writer.StartDocument();
            writer.StartElement(longName.c_str());
            writer.Attribute(longName.c_str(), longText.c_str());
            writer.Text(longText.c_str());
            writer.EndElement();
            isWhole = !failing.HasFailed();
        }
        EXPECT_EQ(stream.bad(), !isWhole);
        EXPECT_EQ(buffer.m_taken, isWhole ? whole : whole.substr(0, buffer.m_taken.size()));
        stream.rdbuf(next.rdbuf());
        writer.Text("next");
        EXPECT_TRUE(next.str() == "next" || next.str() == ">next") << next.str();
    }
}

/// Counts the characters and drops them.
class CountingBuffer : public std::streambuf {
public:
    std::streamsize m_count = 0;

protected:
    std::streamsize xsputn(const char*, std::streamsize count) override {
        m_count += count;
        return count;
    }
    int_type overflow(int_type character) override {
        ++m_count;
        return traits_type::not_eof(character);
    }
};

TEST(WriterTest, DeepTreeIsWrittenWithoutRecursion) {
    constexpr std::streamsize depth = 100'000;
    CountingBuffer buffer;
    std::ostream stream(&buffer);
    Writer writer(stream);
    for (std::streamsize level = 0; level < depth; ++level)
        writer.StartElement("a");
    for (std::streamsize level = 0; level < depth; ++level)
        writer.EndElement();

    // The tags and line ends: ">\n" of the document, "<a>\n" and "</a>\n" of all but the innermost
    // element, "<a/>\n" of that one; the tabs: each level but the first is indented twice, the
    // innermost once.
    const std::streamsize tags = 2 + 9 * (depth - 1) + 5;
    const std::streamsize tabs = depth * (depth - 1) - (depth - 1);
    EXPECT_EQ(buffer.m_count, tags + tabs);
}

TEST(WriterTest, WriterWithOpenElementsCanBeDestroyed) {
    std::ostringstream stream;
    {
        Writer writer(stream);
        writer.StartDocument();
        for (int level = 0; level < 1000; ++level)
            writer.StartElement("a");
        stream.str("");
    }
    EXPECT_EQ(stream.str(), "");
}

TEST(WriterTest, EventsAreInTheOrderThatOtherModulesAreBuiltAgainst) {
    // The destructor comes first.
    EXPECT_EQ(TestSupport::VirtualSlots(&IListener::StartDocument, &IListener::EndDocument,
                                        &IListener::Abort, &IListener::StartElement,
                                        &IListener::EndElement, &IListener::Attribute,
                                        &IListener::Text),
              (std::vector<std::size_t>{2, 3, 4, 5, 6, 7, 8}));
}

} // namespace
} // namespace XML
