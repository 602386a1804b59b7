#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Bench {

/// Makes the SHA-256 of bytes that come in pieces, as FIPS 180-4 defines it.
class Sha256 {
public:
    void Add(std::string_view bytes);

    /// The 64 hexadecimal digits, in small letters, of all that was added. To be called once, at
    /// the end.
    std::string Finish();

private:
    static constexpr std::size_t blockSize = 64;

    void AddByte(unsigned char byte);
    void MixBlock();

    // The first 32 bits of the fractional parts of the square roots of the first eight primes.
    std::array<std::uint32_t, 8> m_state{0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                         0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::array<unsigned char, blockSize> m_block{};
    std::uint64_t m_size = 0;
};

} // namespace Bench
