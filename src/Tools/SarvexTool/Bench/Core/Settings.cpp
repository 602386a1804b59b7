#include "Tools/SarvexTool/Bench/Core/Settings.h"

namespace Bench {

const std::string* TextPool::Keep(std::string_view text) {
    const auto found = m_texts.find(text);
    return found != m_texts.end() ? &*found : &*m_texts.emplace(text).first;
}

} // namespace Bench
