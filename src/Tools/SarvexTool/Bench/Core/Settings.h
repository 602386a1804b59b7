#pragma once

#include "Tools/Vemo/VemoClient/DynamicTest/Columns.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

namespace Bench {

/// The settings of a configuration, in the order of the client's columns.
enum class Setting : std::uint8_t {
    Band,
    Chains,
    Bandwidth,
    Channel,
    BandwidthMode,
    Rate,
    Mode,
    ResourceUnit,
    SpecificResourceUnit,
    LargeRuSize
};

inline constexpr std::size_t SettingCount = PowerTest::columnCommands.size();

/// The setting's column title, as the client knows it.
inline const char* NameOf(Setting setting) {
    return PowerTest::columnCommands[static_cast<std::size_t>(setting)].column;
}

/// The settings that a line, or a command, writes itself, as the client sends them; nothing for the
/// others.
using OwnSettings = std::array<std::optional<std::string>, SettingCount>;

/// One text for each setting, each kept by a TextPool; null where there is none. Settings of one
/// pool are equal when their texts are.
class Settings {
public:
    const std::string*& operator[](Setting setting) {
        return m_texts.at(static_cast<std::size_t>(setting));
    }
    const std::string* operator[](Setting setting) const {
        return m_texts.at(static_cast<std::size_t>(setting));
    }

    auto begin() { return m_texts.begin(); }
    auto begin() const { return m_texts.begin(); }
    auto end() const { return m_texts.end(); }

    bool operator==(const Settings&) const = default;

private:
    std::array<const std::string*, SettingCount> m_texts{};
};

/// A hash continued with a text of a pool, which its address tells from all others.
std::uint64_t HashWith(std::uint64_t hash, const std::string* text);

/// Keeps one copy of each text, so that a table of a million lines holds each value once, and equal
/// texts have equal addresses.
class TextPool {
public:
    TextPool() = default;
    TextPool(const TextPool&) = delete;
    TextPool& operator=(const TextPool&) = delete;

    /// The pool's copy of the text; it lives as long as the pool.
    const std::string* Keep(std::string_view text);

    /// All texts, in no order.
    auto begin() const { return m_texts.begin(); }
    auto end() const { return m_texts.end(); }

private:
    struct Hash : std::hash<std::string_view> {
        using is_transparent = void;
    };

    std::unordered_set<std::string, Hash, std::equal_to<>> m_texts;
};

} // namespace Bench
