#pragma once

#include "Modules/xFramework/OSAL/DebugOutput.h"
#include "Modules/xFramework/Streams/advanced_stream.h"
#include "Modules/xFramework/Streams/lined_streambuf.h"

#include <string>

namespace Streams {

/// Sends each line as one message, with a line feed, to the debugger output of the operating
/// system. The system takes 8-bit text up to its first NUL, so this is for 8-bit characters only.
template <typename Char = char, typename Traits = std::char_traits<Char>>
class debug_streambuf : public lined_streambuf<Char, Traits> {
public:
    using typename lined_streambuf<Char, Traits>::text_type;

    /// From the next line on, messages begin with the prefix and a colon; an empty prefix adds
    /// neither.
    void SetPrefix(const text_type& prefix) { m_prefix = prefix; }

protected:
    void OutputLine(const text_type& text) override {
        text_type message = m_prefix;
        if (!message.empty())
            message += Char(':');
        message += text;
        message += Char('\n');
        OSAL::OutputDebugStringA(message.c_str());
    }

private:
    text_type m_prefix;
};

/// An output stream into the debugger output, one message a line.
template <typename Char = char, typename Traits = std::char_traits<Char>>
class debug_ostream : public advanced_ostream<Char, Traits, debug_streambuf<Char, Traits>> {
public:
    debug_ostream() = default;
    explicit debug_ostream(const std::basic_string<Char, Traits>& prefix) {
        this->GetBuffer().SetPrefix(prefix);
    }
};

} // namespace Streams
