#include "Modules/xFramework/XML/Writer.h"

#include <exception>

namespace XML {

Writer::Writer(std::ostream& stream) : m_stream(stream), m_levels(1) {}

void Writer::StartDocument() {
    m_output += "<?xml version=\"1.0\" ?>\n";
    PutOut();
    // The document has no start tag, so there is none to close either.
    m_levels.front().hasContent = true;
    m_levels.front().startTagClosed = true;
}

void Writer::Abort() {
    m_stream.setstate(std::ios_base::badbit);
}

void Writer::StartElement(const char* name) {
    const std::size_t depth = m_levels.size();
    // Behind a text the tag is closed already: the first child then follows on the text's line.
    if (CloseStartTag(m_levels.back()))
        EndLine(depth - 1);
    m_levels.emplace_back(name);
    // The end of the line before has indented as far as the parent.
    if (depth > 1)
        m_output += '\t';
    m_output += '<';
    m_output += name;
    PutOut();
}

void Writer::EndElement() {
    if (m_levels.size() == 1)
        return;
    const Level& element = m_levels.back();
    if (element.hasContent)
        m_output.append("</").append(element.name).append(">");
    else
        m_output += "/>";
    m_levels.pop_back();
    EndLine(m_levels.size() - 1);
    if (!m_output.empty())
        PutOut();
}

void Writer::Attribute(const char* name, const char* value) {
    m_output += ' ';
    m_output += name;
    m_output += "=\"";
    m_output += value;
    m_output += '"';
    PutOut();
}

void Writer::Text(const char* text) {
    CloseStartTag(m_levels.back());
    m_output += text;
    PutOut();
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

/// Indents the new line as far as an end tag of that depth stands.
void Writer::EndLine(std::size_t depth) {
    m_output += '\n';
    PutOut();
    m_stream.flush();
    if (depth > 1)
        m_output.append(depth - 1, '\t');
}

/// Straight into the stream's buffer, once an event: names and values are short, and an output
/// operation of the stream costs several times as much as what it puts out.
void Writer::PutOut() {
    const auto size = static_cast<std::streamsize>(m_output.size());
    bool isOut = false;
    try {
        isOut = m_stream.good() && m_stream.rdbuf()->sputn(m_output.data(), size) == size;
    } catch (const std::exception&) {
        // Shows in the stream's state like any other failure.
    }
    m_output.clear();
    if (!isOut)
        m_stream.setstate(std::ios_base::badbit);
}

} // namespace XML
