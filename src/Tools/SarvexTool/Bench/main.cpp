#include "Modules/xFramework/OSAL/Console.h"
#include "Modules/xFramework/OSAL/Process.h"
#include "Tools/SarvexTool/Bench/CommandLine.h"

int main(int argc, char* argv[]) {
    OSAL::PrepareStandardStreams();
    const OSAL::PreparedConsole console;
    return Bench::RunProgram(OSAL::ReadArguments(argc, argv));
}
