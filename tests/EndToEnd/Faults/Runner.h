#pragma once

#include "tests/EndToEnd/Faults/Scenario.h"

#include <vector>

namespace EndToEnd::Faults {

/// Runs the scenarios, several at a time, and reports each that ends otherwise than it must. One
/// that hangs is ended after its time limit and reported too.
void RunAll(const std::vector<Scenario>& scenarios);

/// A scenario that is not run, for the reason given; says so.
void Skip(const std::string& name, const std::string& reason);

} // namespace EndToEnd::Faults
