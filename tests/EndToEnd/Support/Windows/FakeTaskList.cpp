#include <fstream>
#include <iostream>

/// Prints the file tasklist.txt of the current directory and keeps its own command line in
/// tasklist-arguments.txt.
int main(int argc, char* argv[]) {
    std::ofstream arguments("tasklist-arguments.txt", std::ios::binary);
    for (int index = 1; index < argc; ++index)
        arguments << "[" << argv[index] << "]";
    std::cout << std::ifstream("tasklist.txt").rdbuf();
    return 0;
}
