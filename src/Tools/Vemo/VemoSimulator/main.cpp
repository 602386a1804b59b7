#include "Tools/Vemo/VemoSimulator/Program.h"

int main(int argc, char* argv[]) {
    return VemoSimulator::RunProgram({argv + (argc > 0 ? 1 : 0), argv + argc});
}
