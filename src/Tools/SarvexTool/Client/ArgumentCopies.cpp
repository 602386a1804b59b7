#include "Tools/SarvexTool/Client/ArgumentCopies.h"

#include <cctype>

std::vector<std::string> CopyArguments(int argc, const char* const argv[]) {
    std::vector<std::string> copies(argv, argv + argc);
    if (copies.empty() || copies.back().empty())
        return copies;
    std::string& last = copies.back();
    if (std::isspace(static_cast<unsigned char>(last.back())) != 0)
        last.pop_back();
    return copies;
}
