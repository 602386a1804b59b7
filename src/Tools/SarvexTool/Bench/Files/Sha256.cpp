#include "Tools/SarvexTool/Bench/Files/Sha256.h"

#include <bit>

namespace Bench {

namespace {

constexpr std::size_t roundCount = 64;
constexpr std::size_t wordsOfBlock = 16;
constexpr unsigned bitsOfByte = 8;

/// The first 32 bits of the fractional parts of the cube roots of the first 64 primes.
constexpr std::array<std::uint32_t, roundCount> constants{
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

// The functions of the standard, by its names: the small and the large sigmas.
std::uint32_t Sigma0(std::uint32_t x) {
    return std::rotr(x, 7) ^ std::rotr(x, 18) ^ x >> 3;
}
std::uint32_t Sigma1(std::uint32_t x) {
    return std::rotr(x, 17) ^ std::rotr(x, 19) ^ x >> 10;
}
std::uint32_t LargeSigma0(std::uint32_t x) {
    return std::rotr(x, 2) ^ std::rotr(x, 13) ^ std::rotr(x, 22);
}
std::uint32_t LargeSigma1(std::uint32_t x) {
    return std::rotr(x, 6) ^ std::rotr(x, 11) ^ std::rotr(x, 25);
}

std::uint32_t WordAt(const unsigned char* bytes) {
    std::uint32_t word = 0;
    for (std::size_t index = 0; index < sizeof word; ++index)
        word = word << bitsOfByte | bytes[index];
    return word;
}

} // namespace

void Sha256::Add(std::string_view bytes) {
    for (const char byte : bytes)
        AddByte(static_cast<unsigned char>(byte));
}

std::string Sha256::Finish() {
    constexpr std::size_t placeOfSize = blockSize - sizeof m_size;
    constexpr unsigned char endMark = 0x80;
    const std::uint64_t bits = m_size * bitsOfByte;
    AddByte(endMark);
    while (m_size % blockSize != placeOfSize)
        AddByte(0);
    for (unsigned shift = sizeof bits * bitsOfByte; shift > 0; shift -= bitsOfByte)
        AddByte(static_cast<unsigned char>(bits >> (shift - bitsOfByte)));
    std::string text;
    constexpr unsigned bitsOfDigit = 4;
    for (const std::uint32_t word : m_state) {
        for (unsigned shift = sizeof word * bitsOfByte; shift > 0; shift -= bitsOfDigit)
            text += "0123456789abcdef"[word >> (shift - bitsOfDigit) & 0xF];
    }
    return text;
}

void Sha256::AddByte(unsigned char byte) {
    m_block[m_size % blockSize] = byte;
    if (++m_size % blockSize == 0)
        MixBlock();
}

void Sha256::MixBlock() {
    std::array<std::uint32_t, roundCount> words;
    for (std::size_t t = 0; t < roundCount; ++t)
        words[t] = t < wordsOfBlock ? WordAt(m_block.data() + t * sizeof(std::uint32_t))
                                    : Sigma1(words[t - 2]) + words[t - 7] + Sigma0(words[t - 15]) +
                                          words[t - 16];
    auto [a, b, c, d, e, f, g, h] = m_state;
    for (std::size_t t = 0; t < roundCount; ++t) {
        const std::uint32_t first =
            h + LargeSigma1(e) + ((e & f) ^ (~e & g)) + constants[t] + words[t];
        const std::uint32_t second = LargeSigma0(a) + ((a & b) ^ (a & c) ^ (b & c));
        h = g;
        g = f;
        f = e;
        e = d + first;
        d = c;
        c = b;
        b = a;
        a = first + second;
    }
    const std::array<std::uint32_t, 8> mixed{a, b, c, d, e, f, g, h};
    for (std::size_t index = 0; index < mixed.size(); ++index)
        m_state[index] += mixed[index];
}

} // namespace Bench
