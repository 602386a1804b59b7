#include "Tools/SarvexTool/Bench/Core/Settings.h"

namespace Bench {

std::uint64_t HashWith(std::uint64_t hash, const std::string* text) {
    constexpr std::uint64_t odd = 0x9E3779B97F4A7C15;
    constexpr int half = 32;
    hash = (hash ^ reinterpret_cast<std::uintptr_t>(text)) * odd;
    return hash ^ hash >> half;
}

const std::string* TextPool::Keep(std::string_view text) {
    const auto found = m_texts.find(text);
    return found != m_texts.end() ? &*found : &*m_texts.emplace(text).first;
}

} // namespace Bench
