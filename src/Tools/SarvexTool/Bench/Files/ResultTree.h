#pragma once

#include "Tools/SarvexTool/Bench/Core/Measurements.h"

#include <istream>
#include <string>

namespace Bench {

/// Reads what a result tree, result.xml, tells of the device. Any bytes of any size will do: what
/// is not XML is said in the facts. The memory does not grow with the tree.
DeviceFacts ReadResultTree(std::istream& xml);

/// The same of the file of that name; said in the facts when it is missing or cannot be read.
DeviceFacts ReadResultTree(const std::string& name);

} // namespace Bench
