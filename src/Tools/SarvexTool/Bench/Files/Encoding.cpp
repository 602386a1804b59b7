#include "Tools/SarvexTool/Bench/Files/Encoding.h"

#include <array>

namespace Bench {

namespace {

struct MarkRow {
    ByteOrderMark mark;
    std::string_view bytes;
};

constexpr std::array<MarkRow, 3> marks{{{ByteOrderMark::Utf8, "\xEF\xBB\xBF"},
                                        {ByteOrderMark::Utf16LittleEndian, "\xFF\xFE"},
                                        {ByteOrderMark::Utf16BigEndian, "\xFE\xFF"}}};

void AppendUtf8(std::string& text, char32_t code) {
    constexpr char32_t firstOfTwo = 0x80;
    constexpr char32_t firstOfThree = 0x800;
    constexpr char32_t firstOfFour = 0x10000;
    const auto part = [code](int shift, char32_t mask, char32_t mark) {
        return static_cast<char>(static_cast<unsigned char>((code >> shift & mask) | mark));
    };
    if (code < firstOfTwo) {
        text += static_cast<char>(code);
    } else if (code < firstOfThree) {
        text += {part(6, 0x1F, 0xC0), part(0, 0x3F, 0x80)};
    } else if (code < firstOfFour) {
        text += {part(12, 0xF, 0xE0), part(6, 0x3F, 0x80), part(0, 0x3F, 0x80)};
    } else {
        text +=
            {part(18, 0x7, 0xF0), part(12, 0x3F, 0x80), part(6, 0x3F, 0x80), part(0, 0x3F, 0x80)};
    }
}

/// The units of a text in UTF-16.
class Utf16Text {
public:
    Utf16Text(std::string_view bytes, bool isBigEndian)
        : m_bytes(bytes), m_high(isBigEndian ? 0 : 1) {}

    std::string ToUtf8() {
        std::string text;
        text.reserve(m_bytes.size());
        while (m_place + 1 < m_bytes.size())
            AppendUtf8(text, TakeCharacter());
        // Half a unit is no character.
        if (m_place < m_bytes.size())
            text += '\xFF';
        return text;
    }

private:
    char32_t UnitAt(std::size_t place) const {
        const auto byteAt = [this](std::size_t index) {
            return static_cast<char32_t>(static_cast<unsigned char>(m_bytes[index]));
        };
        return byteAt(place + m_high) << 8 | byteAt(place + 1 - m_high);
    }

    /// A unit that is half of a pair without its other half becomes a character that UTF-8 does not
    /// have.
    char32_t TakeCharacter() {
        const char32_t first = UnitAt(m_place);
        m_place += 2;
        const bool isFirstHalf = first >= 0xD800 && first < 0xDC00;
        if (!isFirstHalf || m_place + 1 >= m_bytes.size())
            return first;
        const char32_t second = UnitAt(m_place);
        if (second < 0xDC00 || second >= 0xE000)
            return first;
        m_place += 2;
        return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
    }

    std::string_view m_bytes;
    std::size_t m_high;
    std::size_t m_place = 0;
};

} // namespace

ByteOrderMark MarkOf(std::string_view bytes) {
    for (const MarkRow& row : marks) {
        if (bytes.starts_with(row.bytes))
            return row.mark;
    }
    return ByteOrderMark::None;
}

std::string_view WithoutMark(std::string_view bytes, std::string& storage) {
    const ByteOrderMark mark = MarkOf(bytes);
    if (mark == ByteOrderMark::None)
        return bytes;
    for (const MarkRow& row : marks) {
        if (row.mark == mark)
            bytes.remove_prefix(row.bytes.size());
    }
    if (mark == ByteOrderMark::Utf8)
        return bytes;
    storage = Utf16Text(bytes, mark == ByteOrderMark::Utf16BigEndian).ToUtf8();
    return storage;
}

} // namespace Bench
