#pragma once

#include "Tools/SarvexTool/Bench/Files/ResultFile.h"
#include "Tools/SarvexTool/Bench/Output/Page/Page.h"

#include <string>
#include <vector>

namespace Bench {

/// A name of a file as a page's heading: standard input is called so.
std::string SubjectOf(const std::string& name);

/// What is known of a run beside its measurements: when its file was written, the device's country
/// code or why it is not known, where it was measured, and whether the run ended early.
std::vector<PageFact> FactsOf(const ResultNames& names, const Result& result);

/// The same of a run that another one is held against, with its name.
std::vector<PageFact> FactsOfBaseline(const ResultNames& names, const Result& result);

} // namespace Bench
