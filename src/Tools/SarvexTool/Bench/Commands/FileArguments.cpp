#include "Tools/SarvexTool/Bench/Commands/FileArguments.h"

#include "Tools/SarvexTool/Bench/Commands/Command.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"

namespace Bench {

void RequireDistinctFiles(const std::vector<std::string>& inputs,
                          const std::vector<std::string>& outputs) {
    if (const auto problem = ProblemOfNames(inputs, outputs))
        throw WrongUsage(*problem);
}

} // namespace Bench
