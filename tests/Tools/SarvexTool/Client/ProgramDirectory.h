#pragma once

#include "tests/Modules/xFramework/OSAL/Fake/World.h"

#include <string>

/// The directory of the fake system in which the program under test believes to be.
namespace ProgramDirectory {

inline std::string Path(const std::string& fileName) {
    return "/bench/" + fileName;
}

/// Puts a file beside the program.
inline void Write(const std::string& fileName, const std::string& content) {
    OSAL::Fake::TheWorld().files[Path(fileName)].content = content;
}

/// A fresh system whose program directory holds nothing but a port file.
inline void Reset() {
    OSAL::Fake::Reset();
    Write("Socket.cfg", "8738");
}

} // namespace ProgramDirectory
