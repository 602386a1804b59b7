#include "Tools/Vemo/VemoSimulator/Program.h"

int main(int argc, char* argv[]) {
    if (argc == 0)
        return VemoSimulator::RunProgram({}, "");
    return VemoSimulator::RunProgram({argv + 1, argv + argc}, argv[0]);
}
