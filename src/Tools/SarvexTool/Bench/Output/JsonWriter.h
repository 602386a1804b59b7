#pragma once

#include "Tools/SarvexTool/Bench/Core/Decimal.h"

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

namespace Bench {

/// Writes JSON piece by piece, so that a large table needs no memory of its own. Decimals keep all
/// their digits. Bytes of a text that are no UTF-8 are replaced by U+FFFD.
class JsonWriter {
public:
    /// The stream lives longer.
    explicit JsonWriter(std::ostream& stream) : m_stream(stream) {}
    JsonWriter(const JsonWriter&) = delete;
    JsonWriter& operator=(const JsonWriter&) = delete;

    void BeginObject() { Begin('{'); }
    void EndObject() { End('}'); }
    void BeginArray() { Begin('['); }
    void EndArray() { End(']'); }

    /// The next value of an object is of this key, which is plain ASCII.
    JsonWriter& Key(const char* key);
    /// What follows is on a line of its own.
    void BreakLine() { m_breaksLine = true; }

    void Text(std::string_view text);
    void Number(Decimal number) { Plain(number.ToText()); }
    /// A finite number.
    void Number(double number);
    void Count(std::size_t count) { Plain(std::to_string(count)); }
    void Bool(bool value) { Plain(value ? "true" : "false"); }
    void Null() { Plain("null"); }

    /// Hands the rest to the stream. To be called at the end.
    void Finish();

private:
    void Begin(char bracket);
    void End(char bracket);
    void Separate();
    void Plain(std::string_view text);

    std::ostream& m_stream;
    std::string m_text;
    bool m_needsComma = false;
    bool m_breaksLine = false;
};

} // namespace Bench
