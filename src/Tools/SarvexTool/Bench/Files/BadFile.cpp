#include "Tools/SarvexTool/Bench/Files/BadFile.h"

#include <utility>

namespace Bench {

BadFile::BadFile(std::string file, const std::string& problem)
    : BadFile(std::move(file), std::vector<Problem>{{Severity::Error, 0, 0, problem}}) {}

BadFile::BadFile(std::string file, std::vector<Problem> problems)
    : std::runtime_error(file + ": " + problems.at(0).text),
      m_file(std::move(file)),
      m_problems(std::move(problems)) {}

} // namespace Bench
