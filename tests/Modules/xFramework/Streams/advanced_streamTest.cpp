#include "Modules/xFramework/Streams/advanced_stream.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <type_traits>

namespace {

using Streams::advanced_ostream;
using Streams::advanced_stream;
using Streams::advanced_streambuf;

TEST(advanced_streamTest, WritesIntoTheBufferThatItOwns) {
    advanced_stream<std::ostream, std::stringbuf> stream;
    stream << "chain " << 2;
    EXPECT_EQ(stream.rdbuf(), &stream.GetBuffer());
    EXPECT_EQ(stream.GetBuffer().str(), "chain 2");
}

TEST(advanced_streamTest, ReadsAndWritesWhenItsKindDoes) {
    advanced_stream<std::iostream, std::stringbuf> stream;
    stream << 17.5;
    double value = 0;
    stream >> value;
    EXPECT_EQ(value, 17.5);
}

TEST(advanced_streamOutputTest, IsAnOrdinaryOutputStreamOverAnyBuffer) {
    static_assert(std::is_base_of_v<std::ostream, advanced_ostream<>>);
    static_assert(std::is_base_of_v<std::wostream, advanced_ostream<wchar_t>>);
    advanced_ostream<char, std::char_traits<char>, std::stringbuf> stream;
    std::ostream& ordinary = stream;
    ordinary << "text";
    EXPECT_EQ(stream.GetBuffer().str(), "text");
}

TEST(advanced_streamOutputTest, HasByDefaultTheCommonBufferThatTakesNothing) {
    advanced_ostream<> stream;
    static_assert(std::is_same_v<decltype(stream.GetBuffer()), advanced_streambuf<>&>);
    stream << 'x';
    EXPECT_TRUE(stream.bad());
}

} // namespace
