#pragma once

#include "Tools/SarvexTool/Bench/Output/Page/HistoryPage.h"

#include <iosfwd>

namespace Bench {

/// Writes what the script of a page of kept runs shows, as one JSON object that cannot end the
/// script element which holds it. Each text is written once and named by its place, or by -1 for
/// none. Moments are in seconds since 1970, UTC.
///
/// ownMean         1 where the one station is held against its own mean
/// judged          1 where there were limits of powers
/// stations        [name, devices, what there is to say of it, offset or null, mean or null, lower
///                 limit or null, upper limit or null, runs beyond, powers, powers out of limits,
///                 powers without a limit], in the order of the trend
/// points          for each station its runs: [moment, run, device, median, differences, 1 when
///                 beyond]
/// item            the one configuration and chain that is left, or -1
/// powers          [moment, station, run, device, power in dBm, 1 when out of limits]
/// runs            [moment, first digits of the hash, name, bench, device, firmware, verdict,
///                 outcome, measured, measurements, note, user, host], or null
void WriteHistoryData(const HistoryPage& page, std::ostream& out);

} // namespace Bench
