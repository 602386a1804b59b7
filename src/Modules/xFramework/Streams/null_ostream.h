#pragma once

#include "Modules/xFramework/Streams/advanced_stream.h"

#include <streambuf>
#include <string>

namespace Streams {

/// Takes no character and holds none: the standard buffer as it is, whose overflow reports the end
/// of file, so that the first character written puts its stream into the bad state.
template <typename Char = char, typename Traits = std::char_traits<Char>>
class nullbuf : public std::basic_streambuf<Char, Traits> {};

/// An output stream that puts out nothing. The first character written leaves it in the bad state,
/// so that all further output is skipped before any formatting is done.
template <typename Char = char, typename Traits = std::char_traits<Char>>
class null_ostream : public advanced_ostream<Char, Traits, nullbuf<Char, Traits>> {};

/// The process-wide null streams. Defined here rather than in a source file, so that they exist
/// before any static object of a file that includes this one; programs that link StartUp have them
/// before main in any case.
inline null_ostream<char> null_stream;
inline null_ostream<wchar_t> wide_null_stream;

} // namespace Streams
