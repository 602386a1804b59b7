#pragma once

#include <sstream>
#include <string>

/// Ends the program, as the fuzzer expects it of a failed input, after it has told the property
/// that does not hold and what is known about it.
[[noreturn]] void FailProperty(const std::string& property, const std::string& detail);

/// The property is a sentence about the code under test that is true for every input.
inline void Check(bool holds, const char* property) {
    if (!holds)
        FailProperty(property, "");
}

/// The same for two things that have to be equal; a stream can write both.
template <typename Actual, typename Expected>
void CheckEqual(const Actual& actual, const Expected& expected, const char* property) {
    if (actual == expected)
        return;
    std::ostringstream detail;
    detail << "actual:   [" << actual << "]\nexpected: [" << expected << "]";
    FailProperty(property, detail.str());
}
