#pragma once

// Public, stable within a major version. One thread at a time. The stream stays the caller's. Only
// the constructor throws, and std::bad_alloc alone; all other failures show in the stream.

#include "Modules/xFramework/XML/IListener.h"

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace XML {

/// Writes the events of a document as indented XML text: one tab a level below the top-level
/// elements, one element a line. Every end of line but the declaration's is the stream's and
/// flushes it.
///
/// Nothing is escaped; names, values and texts come out as they are. Each event is in the stream's
/// buffer when it returns.
///
/// The writer reports nothing and throws nothing, not even for a stream that is set to throw
/// (std::ios::exceptions): a failure, whatever the stream's buffer throws and a lack of memory
/// included, shows in the state of the stream, which the caller checks afterwards. What an event
/// that failed has not put out is dropped.
///
/// The events are written as they come: an attribute after the text or the first child of its
/// element is written into the content, and the first child after a text follows on the text's
/// line, the next ones on lines of their own. An EndElement without an open element is ignored.
class Writer : public IListener {
public:
    /// The stream stays the caller's and outlives the writer.
    explicit Writer(std::ostream& stream);

    void StartDocument() override;
    void EndDocument() override {}
    /// Makes the stream bad, so that it drops all further output.
    void Abort() override;
    void StartElement(const char* name) override;
    void EndElement() override;
    void Attribute(const char* name, const char* value) override;
    void Text(const char* text) override;

private:
    /// One level of the element tree. Its depth is its position in the list.
    struct Level {
        Level() = default;
        explicit Level(const char* elementName) : name(elementName) {}

        std::string name;
        /// It has a text or a child, so it needs an end tag.
        bool hasContent = false;
        /// The ">" of its start tag is written.
        bool startTagClosed = false;
    };

    template <typename Build>
    void WriteEvent(Build build);
    bool CloseStartTag(Level& element);
    void EndLine(std::size_t depth);
    void PutOut();
    void MakeStreamBad();

    std::ostream& m_stream;
    /// The document and, after it, the open elements from the outside in. A list instead of
    /// writers that own each other: an event reaches the innermost one at once, and no depth
    /// overflows the stack.
    std::vector<Level> m_levels;
    /// What the current event puts out; empty between events.
    std::string m_output;
};

} // namespace XML
