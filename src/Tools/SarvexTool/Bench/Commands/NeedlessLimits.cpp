#include "Tools/SarvexTool/Bench/Commands/NeedlessLimits.h"

#include "Tools/SarvexTool/Bench/Core/ProblemList.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"

namespace Bench {

void WarnOfNeedlessLimits(const LimitTable& table, const std::string& name, const Console& err) {
    static constexpr ProblemKind needless{Severity::Warning, "lines that fit no measurement"};
    ProblemList problems;
    for (const Limit* const limit : table.NeverFitting())
        problems.Add(needless, limit->line, 0,
                     "the line fits no measurement; look for a misspelt value, or take it away");
    PrintProblems(err, name, problems.InOrder());
}

} // namespace Bench
