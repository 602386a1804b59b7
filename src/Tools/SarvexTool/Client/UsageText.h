#pragma once

/// The long usage text, for standard output as it stands. Its unbalanced brackets and the like
/// words for two options are known to its readers and kept.
extern const char* const usageText;
