#include "Modules/xFramework/Streams/null_ostream.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

using Streams::null_ostream;
using Streams::nullbuf;

// Written before main: the process-wide streams have to exist by then, and before this file's own
// static objects.
const bool narrowStoodBeforeMain = (Streams::null_stream << "text").bad();
const bool wideStoodBeforeMain = (Streams::wide_null_stream << L"text").bad();

TEST(null_ostreamTest, IsGoodUntilTheFirstWriteAndBadAfterwards) {
    null_ostream<> stream;
    EXPECT_TRUE(stream.good());
    stream << "x";
    EXPECT_TRUE(stream.bad());
    stream << 12 << 'c' << 1.5;
    EXPECT_TRUE(stream.bad());
}

TEST(null_ostreamTest, IsBadAfterAnyKindOfWrite) {
    null_ostream<> number;
    number << 1;
    null_ostream<> character;
    character.put('x');
    null_ostream<> block;
    block.write("xyz", 3);
    null_ostream<wchar_t> wide;
    wide << L"x";
    EXPECT_TRUE(number.bad());
    EXPECT_TRUE(character.bad());
    EXPECT_TRUE(block.bad());
    EXPECT_TRUE(wide.bad());
}

TEST(null_ostreamTest, ProcessWideStreamsExistBeforeMain) {
    EXPECT_TRUE(narrowStoodBeforeMain);
    EXPECT_TRUE(wideStoodBeforeMain);
    EXPECT_TRUE(Streams::null_stream.bad());
    EXPECT_TRUE(Streams::wide_null_stream.bad());
}

TEST(null_ostreamBufferTest, TakesNoCharacterAndHoldsNone) {
    nullbuf<> buffer;
    EXPECT_EQ(buffer.sputc('x'), std::char_traits<char>::eof());
    EXPECT_EQ(buffer.sputn("xyz", 3), 0);
    EXPECT_EQ(buffer.sgetc(), std::char_traits<char>::eof());
    static_assert(std::is_base_of_v<std::streambuf, nullbuf<>>);
    static_assert(std::is_base_of_v<std::wstreambuf, nullbuf<wchar_t>>);
}

} // namespace
