#pragma once

#include <cstddef>

/// How often the test program has asked for memory up to now.
std::size_t CountAllocations();
