#include "Tools/SarvexTool/Bench/Core/Configurations.h"

namespace Bench {

namespace {

Setting At(std::size_t index) {
    return static_cast<Setting>(index);
}

} // namespace

ExpectedChains ChainsOf(const std::string* chains) {
    if (chains == nullptr)
        return {};
    const bool both = *chains == "AB";
    return {both || *chains == "A", both || *chains == "B"};
}

void CarriedSettings::Write(LineNumber line, const Settings& own) {
    m_line = line;
    for (std::size_t index = 0; index < SettingCount; ++index) {
        m_isOwn[index] = own[At(index)] != nullptr;
        if (!m_isOwn[index])
            continue;
        m_effective[At(index)] = own[At(index)];
        // What the line writes itself holds for the line, whatever becomes of it.
        m_uncertainSince[index] = 0;
    }
}

void CarriedSettings::WriteAll(LineNumber line, const Settings& own) {
    Write(line, own);
    for (std::size_t index = 0; index < SettingCount; ++index)
        m_isOwn[index] = m_effective[At(index)] != nullptr;
    m_uncertainSince = {};
}

void CarriedSettings::Judge(bool isAccepted) {
    if (isAccepted)
        return;
    for (std::size_t index = 0; index < SettingCount; ++index) {
        if (m_isOwn[index])
            m_uncertainSince[index] = m_line;
    }
}

CarriedSettings::Uncertain CarriedSettings::FirstUncertain() const {
    for (std::size_t index = 0; index < SettingCount; ++index) {
        if (m_uncertainSince[index] != 0)
            return {m_uncertainSince[index], At(index)};
    }
    return {};
}

} // namespace Bench
