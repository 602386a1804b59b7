#include "Tools/SarvexTool/Bench/Files/Input.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Sha256.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <system_error>
#include <vector>

namespace Bench {

namespace {

constexpr std::size_t blockSize = 65536;

[[noreturn]] void Fail(const std::string& name, int error) {
    const std::string reason =
        error == 0 ? "" : " (" + std::generic_category().message(error) + ")";
    throw BadInput(name, "cannot be read" + reason + HintOfWildcards(name));
}

/// The file's size, so that its bytes need not be moved while they come; 0 where it is not known.
std::size_t ExpectedSize(const std::filesystem::path& path) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    return error ? 0 : static_cast<std::size_t>(size);
}

std::string ReadToEnd(const std::string& name, std::istream& stream, std::size_t expectedSize) {
    std::string bytes;
    std::size_t size = 0;
    errno = 0;
    while (stream) {
        // One byte more shows the end without another block.
        bytes.resize(std::max(expectedSize + 1, size + std::max(blockSize, size / 2)));
        stream.read(bytes.data() + size, static_cast<std::streamsize>(bytes.size() - size));
        size += static_cast<std::size_t>(stream.gcount());
    }
    if (stream.bad())
        Fail(name, errno);
    bytes.resize(size);
    return bytes;
}

/// A workbook is the most likely file of another kind, and as a text it would be full of problems.
std::string RequireNoWorkbook(const std::string& name, std::string bytes) {
    // A ZIP archive (xlsx, ods), and the older compound file (xls).
    for (const std::string_view start : {"PK\x03\x04", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"}) {
        if (bytes.starts_with(start))
            throw BadInput(name, "is a spreadsheet's workbook; save the sheet as CSV");
    }
    return bytes;
}

} // namespace

std::string ReadInput(const std::string& name, std::istream& standardInput) {
    if (name == StandardStreamName)
        return RequireNoWorkbook(name, ReadToEnd(name, standardInput, 0));
    const std::filesystem::path path = PathOf(name);
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        Fail(name, EISDIR);
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        Fail(name, errno);
    return RequireNoWorkbook(name, ReadToEnd(name, file, ExpectedSize(path)));
}

void ReadPieces(const std::string& name, const std::function<void(std::string_view)>& take) {
    constexpr std::size_t pieceSize = 65536;
    errno = 0;
    std::ifstream file(PathOf(name), std::ios::binary);
    std::vector<char> piece(pieceSize);
    while (file) {
        file.read(piece.data(), pieceSize);
        take({piece.data(), static_cast<std::size_t>(file.gcount())});
    }
    if (!file.is_open() || file.bad())
        throw BadInput(name, "cannot be read (" + std::generic_category().message(errno) + ")" +
                                 HintOfWildcards(name));
}

std::string HashOfFile(const std::string& name) {
    Sha256 hash;
    ReadPieces(name, [&hash](std::string_view piece) { hash.Add(piece); });
    return hash.Finish();
}

} // namespace Bench
