#include "Modules/xFramework/XML/Writer.h"

#include <exception>
#include <utility>

namespace XML {

Writer::Writer(std::ostream& stream) : m_stream(stream), m_levels(1) {}

void Writer::StartDocument() {
    WriteEvent([this] {
        m_output += "<?xml version=\"1.0\" ?>\n";
        // The document has no start tag, so there is none to close either.
        m_levels.front().hasContent = true;
        m_levels.front().startTagClosed = true;
    });
}

void Writer::Abort() {
    MakeStreamBad();
}

void Writer::StartElement(const char* name) {
    WriteEvent([this, name] {
        const std::size_t depth = m_levels.size();
        // Before anything is put out, so that the element is open even when that fails.
        m_levels.emplace_back(name);
        // After a text the tag is closed already: the first child then follows on the text's line.
        if (CloseStartTag(m_levels[depth - 1]))
            EndLine(depth - 1);
        // The end of the line before has indented as far as the parent.
        if (depth > 1)
            m_output += '\t';
        m_output += '<';
        m_output += name;
    });
}

void Writer::EndElement() {
    if (m_levels.size() == 1)
        return;
    WriteEvent([this] {
        const Level element = std::move(m_levels.back());
        m_levels.pop_back();
        if (element.hasContent)
            m_output.append("</").append(element.name).append(">");
        else
            m_output += "/>";
        EndLine(m_levels.size() - 1);
    });
}

void Writer::Attribute(const char* name, const char* value) {
    WriteEvent([this, name, value] {
        m_output += ' ';
        m_output += name;
        m_output += "=\"";
        m_output += value;
        m_output += '"';
    });
}

void Writer::Text(const char* text) {
    WriteEvent([this, text] {
        CloseStartTag(m_levels.back());
        m_output += text;
    });
}

/// Puts out what build adds to m_output. What is thrown meanwhile ends here.
template <typename Build>
void Writer::WriteEvent(Build build) {
    try {
        build();
        PutOut();
    } catch (const std::exception* thrown) {
        // Of a buffer that throws pointers: whoever catches one deletes it.
        delete thrown;
        MakeStreamBad();
    } catch (...) {
        MakeStreamBad();
    }
    // The next event does not put out once more what this one could not.
    m_output.clear();
}

/// Whether the tag was open until now.
bool Writer::CloseStartTag(Level& element) {
    if (element.startTagClosed)
        return false;
    m_output += '>';
    element.hasContent = true;
    element.startTagClosed = true;
    return true;
}

/// Ends the line, flushes the stream, and indents the new line as far as an end tag of that depth.
void Writer::EndLine(std::size_t depth) {
    m_output += '\n';
    PutOut();
    // The buffer itself is asked: the stream's flush would swallow a pointer that the buffer
    // throws, and nobody would delete it.
    if (m_stream.good() && m_stream.rdbuf()->pubsync() == -1)
        MakeStreamBad();
    if (depth > 1)
        m_output.append(depth - 1, '\t');
}

/// Straight into the stream's buffer, in one piece: names and values are short, and an output
/// operation of the stream costs several times as much as what it puts out.
void Writer::PutOut() {
    const auto size = static_cast<std::streamsize>(m_output.size());
    const bool isOut =
        m_stream.good() && (size == 0 || m_stream.rdbuf()->sputn(m_output.data(), size) == size);
    if (!isOut)
        MakeStreamBad();
    m_output.clear();
}

void Writer::MakeStreamBad() {
    try {
        m_stream.setstate(std::ios_base::badbit);
    } catch (const std::exception&) {
        // The stream is bad before it throws, and its state is all that the caller asks for.
    }
}

} // namespace XML
