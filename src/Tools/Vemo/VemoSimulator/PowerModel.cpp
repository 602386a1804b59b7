#include "Tools/Vemo/VemoSimulator/PowerModel.h"

#include "Tools/Vemo/VemoSimulator/RadioSettings.h"
#include "Tools/Vemo/VemoSimulator/Text.h"

#include <algorithm>
#include <cstdlib>

namespace VemoSimulator {

namespace {

struct Band {
    std::string_view name;
    int power;
    int highestChannel;
    int lowestChannel;
    /// The channel with the highest power, and what each channel away from it costs.
    int bestChannel;
    int lossPerChannel;
    int widestBandwidth;
};

constexpr std::array<Band, 3> bands{{{"2.4", 2000, 14, 1, 7, 10, 40},
                                     {"5", 1850, 177, 36, 100, 1, 160},
                                     {"6", 1700, 233, 1, 117, 1, 320}}};

constexpr int narrowestBandwidth = 20;
constexpr int lossPerDoubledBandwidth = 100;
constexpr int chainBLoss = 25;

const Band& BandOf(const RadioSettings& settings) {
    return *std::ranges::find(bands, settings.Get(Setting::Band), &Band::name);
}

int NumberOf(const RadioSettings& settings, Setting setting) {
    return static_cast<int>(ParseDecimal(settings.Get(setting)).value_or(0));
}

int BandwidthLoss(int bandwidth) {
    int loss = 0;
    for (; bandwidth > narrowestBandwidth; bandwidth /= 2)
        loss += lossPerDoubledBandwidth;
    return loss;
}

/// The 64-bit FNV-1a hash of a text, begun with a state of the caller's.
std::uint64_t HashText(std::uint64_t state, std::string_view text) {
    constexpr std::uint64_t prime = 0x100000001B3;
    for (const char character : text)
        state = (state ^ static_cast<unsigned char>(character)) * prime;
    return state;
}

/// Spreads a difference in any bit over all bits.
std::uint64_t MixBits(std::uint64_t bits) {
    bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9;
    bits = (bits ^ bits >> 27) * 0x94D049BB133111EB;
    return bits ^ bits >> 31;
}

} // namespace

std::string FindConflict(const RadioSettings& settings) {
    const Band& band = BandOf(settings);
    const std::string start = "Band " + std::string(band.name) + " has no ";
    const int channel = NumberOf(settings, Setting::Channel);
    if (channel < band.lowestChannel || channel > band.highestChannel)
        return start + "channel " + std::to_string(channel) + ".";
    const int bandwidth = NumberOf(settings, Setting::Bandwidth);
    if (bandwidth > band.widestBandwidth)
        return start + "bandwidth of " + std::to_string(bandwidth) + " MHz.";
    return "";
}

PowerModel::PowerModel(std::uint64_t seed, std::uint32_t noise, std::uint32_t offset)
    : m_seed(seed), m_noise(noise), m_offset(static_cast<int>(offset)) {}

int PowerModel::TargetPower(const RadioSettings& settings, char chain) const {
    const Band& band = BandOf(settings);
    const int channelsAway = std::abs(NumberOf(settings, Setting::Channel) - band.bestChannel);
    return band.power - BandwidthLoss(NumberOf(settings, Setting::Bandwidth)) -
           channelsAway * band.lossPerChannel - RateBackOff(settings.Get(Setting::Rate)) -
           (chain == 'B' ? chainBLoss : 0) + Noise(settings, chain) + m_offset;
}

int PowerModel::Noise(const RadioSettings& settings, char chain) const {
    std::uint64_t hash = MixBits(m_seed);
    for (const Setting setting :
         {Setting::Band, Setting::Bandwidth, Setting::Channel, Setting::Rate})
        hash = HashText(hash, settings.Get(setting) + "/");
    hash = MixBits(HashText(hash, std::string_view(&chain, 1)));
    const std::uint64_t width = 2 * std::uint64_t{m_noise} + 1;
    return static_cast<int>(hash % width) - static_cast<int>(m_noise);
}

std::string FormatHundredths(int hundredths) {
    const int size = std::abs(hundredths);
    std::string text = (hundredths < 0 ? "-" : "") + std::to_string(size / 100);
    const int fraction = size % 100;
    if (fraction == 0)
        return text;
    text.append(1, '.').append(1, static_cast<char>('0' + fraction / 10));
    if (fraction % 10 != 0)
        text.append(1, static_cast<char>('0' + fraction % 10));
    return text;
}

} // namespace VemoSimulator
