#pragma once

#include "Tools/SarvexTool/Bench/Output/Page/Page.h"

#include <iosfwd>

namespace Bench {

/// Writes what the page's script shows, as one JSON object that cannot end the script element which
/// holds it. Each text is written once and named by its place; powers are texts, so that no digit
/// is lost.
///
/// columns         the titles of the settings
/// chains          the names of the chains, verdicts those of the verdicts
/// texts           all texts of settings and reasons
/// configurations  [line, the place of each setting's text or -1]
/// limits          [line, minimum or null, maximum or null], or null without limits
/// measurements    [configuration, chain, power or null, reason or -1, verdict, limit or -1,
///                 margin or null], and with a baseline also the old line (0: none), its power or
///                 null, and the change or null
/// differences     [kind, measurement or -1, old line or 0, old power or null, change or null,
///                 1 when within noise], and for one in the old run only also
///                 [configuration, chain]; null without a baseline
/// tolerance       in dB as a text; absent without a baseline, as the two below
/// noise           in dB as a text, or null
/// sources         [first line, last line, bench or -1, device or -1, attempt or null], in the
/// order
///                 of the lines; of the page's run
/// groupBy         "bench", "device" or "attempt", what the table of places is by; null without one
/// shifts          [band or -1, rate or -1, pairs, mean change in dB as a text]
void WriteDataBlock(const Page& page, std::ostream& out);

} // namespace Bench
