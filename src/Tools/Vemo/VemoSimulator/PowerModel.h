#pragma once

#include "Tools/Vemo/VemoSimulator/RadioSettings.h"

#include <cstdint>
#include <string>

namespace VemoSimulator {

/// Why the device cannot transmit with its settings: "Band 2.4 has no channel 36."; empty when it
/// can.
std::string FindConflict(const RadioSettings& settings);

/// The target power of a chain, 'A' or 'B', of a device whose settings have no conflict, in
/// hundredths of a dBm. It depends on band, bandwidth, channel, rate and chain, and on nothing that
/// happened before. All in whole numbers, so that every platform finds the same.
class PowerModel {
public:
    /// The power differs by up to noise hundredths of a dB either way; 0 is no noise. It is higher
    /// by offset hundredths.
    PowerModel(std::uint64_t seed, std::uint32_t noise, std::uint32_t offset = 0);

    int TargetPower(const RadioSettings& settings, char chain) const;

private:
    int Noise(const RadioSettings& settings, char chain) const;

    std::uint64_t m_seed;
    std::uint32_t m_noise;
    int m_offset;
};

/// Hundredths as a decimal number without trailing zeros: 1750 is "17.5", -50 is "-0.5".
std::string FormatHundredths(int hundredths);

} // namespace VemoSimulator
