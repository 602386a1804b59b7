#pragma once

#include "Tools/SarvexTool/Bench/Core/Settings.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace Bench {

/// A line's number in its file; the header is line 1. 0 stands for no line.
using LineNumber = std::uint32_t;

/// The chains that an effective configuration is expected to measure.
struct ExpectedChains {
    bool a = false;
    bool b = false;

    /// Whether the setting names chains at all: A, B or AB.
    bool AreKnown() const { return a || b; }
    int Count() const { return int{a} + int{b}; }
};

/// What a value of the setting Chains names; nothing for an unknown one and for any other text.
ExpectedChains ChainsOf(const std::string* chains);

/// What the device is set to while the lines of a test file run, as far as the lines tell. Each
/// line writes its own settings over those of the lines before. A daemon keeps nothing of a line
/// that it refuses, so what such a line wrote is uncertain from then on, until an accepted line
/// writes the setting again.
class CarriedSettings {
public:
    /// Writes the settings of the next line; null ones stay as they are.
    void Write(LineNumber line, const Settings& own);

    /// The same for a line that was sent with all its effective settings: what it carries over from
    /// a refused line is none the less certain.
    void WriteAll(LineNumber line, const Settings& own);

    /// Says whether the daemon took the line written last.
    void Judge(bool isAccepted);

    /// The effective settings of the line written last; null where no line has set one.
    const Settings& Effective() const { return m_effective; }

    /// A setting of the line written last that an earlier, refused line left uncertain; the first
    /// in the columns' order, and the refused line. Line 0 when all are certain.
    struct Uncertain {
        LineNumber since = 0;
        Setting setting{};
    };
    Uncertain FirstUncertain() const;

private:
    Settings m_effective;
    std::array<LineNumber, SettingCount> m_uncertainSince{};
    std::array<bool, SettingCount> m_isOwn{};
    LineNumber m_line = 0;
};

} // namespace Bench
