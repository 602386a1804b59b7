#include "Tools/SarvexTool/Bench/Files/FilePieces.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Sha256.h"

#include <cerrno>
#include <fstream>
#include <system_error>
#include <vector>

namespace Bench {

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
