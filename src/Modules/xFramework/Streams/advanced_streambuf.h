#pragma once

#include <streambuf>
#include <string>

namespace Streams {

/// Common base of the stream buffers that do something with their text.
template <typename Char = char, typename Traits = std::char_traits<Char>>
class advanced_streambuf : public std::basic_streambuf<Char, Traits> {};

} // namespace Streams
