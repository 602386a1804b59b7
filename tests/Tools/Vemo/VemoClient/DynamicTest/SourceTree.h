#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// A file of the source tree, byte for byte. To be read before a test changes the directory: the
/// tree's path may lack its drive.
inline std::string ReadSourceFile(const std::string& path) {
    std::ifstream file(std::filesystem::path(SARVEX_SOURCE_DIR) / path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
