#pragma once

#include <ostream>
#include <streambuf>
#include <string>

namespace Streams {

/// Common base of the stream buffers that do something with their text.
template <typename Char = char, typename Traits = std::char_traits<Char>>
class advanced_streambuf : public std::basic_streambuf<Char, Traits> {};

/// Holds a buffer as a base class, so that it exists before the stream that is built on it.
template <typename Buffer>
class buffer_holder {
protected:
    Buffer m_buffer;
};

/// A stream of the given kind together with the buffer that it owns.
template <typename Stream, typename Buffer>
class advanced_stream : private buffer_holder<Buffer>, public Stream {
public:
    advanced_stream() : Stream(&this->m_buffer) {}

    /// The buffer; it lives as long as the stream.
    Buffer& GetBuffer() { return this->m_buffer; }
};

/// An output stream that owns its buffer.
template <typename Char = char, typename Traits = std::char_traits<Char>,
          typename Buffer = advanced_streambuf<Char, Traits>>
class advanced_ostream : public advanced_stream<std::basic_ostream<Char, Traits>, Buffer> {};

} // namespace Streams
