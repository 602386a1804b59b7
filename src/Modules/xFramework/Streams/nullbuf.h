#pragma once

#include <streambuf>
#include <string>

namespace Streams {

/// Swallows nothing and holds nothing: the standard buffer as it is, whose overflow reports the end
/// of file, so that the first character written puts its stream into the bad state.
template <typename Char = char, typename Traits = std::char_traits<Char>>
class nullbuf : public std::basic_streambuf<Char, Traits> {};

} // namespace Streams
