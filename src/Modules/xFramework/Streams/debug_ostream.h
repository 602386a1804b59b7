#pragma once

#include "Modules/xFramework/Streams/advanced_stream.h"
#include "Modules/xFramework/Streams/debug_streambuf.h"

#include <string>

namespace Streams {

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
