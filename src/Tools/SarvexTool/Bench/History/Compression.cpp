#include "Tools/SarvexTool/Bench/History/Compression.h"

#include <zlib.h>

#include <new>
#include <stdexcept>

namespace Bench {

namespace {

/// So many bytes at most can become one, says zlib's "Technical Details".
constexpr std::size_t largestFactor = 1032;

const Bytef* BytesOf(std::string_view text) {
    return reinterpret_cast<const Bytef*>(text.data());
}

Bytef* BytesOf(std::string& text) {
    return reinterpret_cast<Bytef*>(text.data());
}

[[noreturn]] void FailToDecompress() {
    throw std::runtime_error("its compressed bytes are damaged");
}

} // namespace

std::string Compress(std::string_view bytes) {
    if (bytes.size() > MostBytesKept)
        throw std::length_error("more than " + std::to_string(MostBytesKept) +
                                " bytes in one file cannot be kept");
    const auto size = static_cast<uLong>(bytes.size());
    uLongf written = compressBound(size);
    std::string compressed(written, '\0');
    if (compress2(BytesOf(compressed), &written, BytesOf(bytes), size, Z_DEFAULT_COMPRESSION) !=
        Z_OK)
        throw std::bad_alloc();
    compressed.resize(written);
    return compressed;
}

std::string Decompress(std::string_view compressed, std::size_t size) {
    if (size > MostBytesKept || compressed.size() > MostBytesKept + MostBytesKept / 2 ||
        size / largestFactor > compressed.size())
        FailToDecompress();
    std::string bytes(size, '\0');
    auto written = static_cast<uLongf>(size);
    auto taken = static_cast<uLong>(compressed.size());
    if (uncompress2(BytesOf(bytes), &written, BytesOf(compressed), &taken) != Z_OK ||
        written != size || taken != compressed.size())
        FailToDecompress();
    return bytes;
}

} // namespace Bench
