#include "Modules/xFramework/OSAL/Process.h"
#include "Tools/SarvexTool/Client/Program/EntryPoint.h"

int main(int argc, char* argv[]) {
    OSAL::PrepareStandardStreams();
    return OSAL::ToExitStatus(SarvexTool::RunClient(argc, argv));
}
