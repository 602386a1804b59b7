#pragma once

#include "Modules/xFramework/Streams/advanced_stream.h"

#include <string>

namespace Streams {

/// Cuts the text that is written into lines and hands on each line, without its line feed, as soon
/// as the line feed or a flush arrives. Empty lines are dropped. What was not flushed when the
/// buffer is destroyed is dropped too. Writing never fails; nothing can be read.
template <typename Char = char, typename Traits = std::char_traits<Char>>
class lined_streambuf : public advanced_streambuf<Char, Traits> {
public:
    using text_type = std::basic_string<Char, Traits>;
    using int_type = typename Traits::int_type;

protected:
    int_type uflow() override { return ReadChar(); }

    int_type overflow(int_type c) override {
        if (Traits::eq_int_type(c, Traits::eof()) || Traits::to_char_type(c) == Char('\n'))
            FlushLine();
        else
            AppendChar(Traits::to_char_type(c));
        return Traits::not_eof(c);
    }

    int sync() override {
        if (!m_line.empty())
            FlushLine();
        return 0;
    }

    /// The next character of the input side: always the end of file here.
    virtual int_type ReadChar() { return Traits::eof(); }

    /// Adds a character to the current line.
    virtual void AppendChar(Char c) { m_line.push_back(c); }

    /// Hands the current line on and starts the next one; nothing happens when it is empty.
    virtual void FlushLine() {
        if (!m_line.empty())
            OutputLine(m_line);
        m_line.clear();
    }

    /// Takes one finished line, which is never empty and holds no line feed.
    virtual void OutputLine(const text_type& text) = 0;

private:
    text_type m_line;
};

} // namespace Streams
