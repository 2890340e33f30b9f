#pragma once

#include "stats/StatRecord.h"

#include <vector>

namespace korvalin {

/// Makes one record of those that describe the same connection: same line (letter case ignored), log-ins less
/// than 60 seconds apart, and the later one begins before the earlier one ends. The one that ends last lends
/// its fields; the log-in is the earliest. `records` are sorted by line and log-in. Returns how many were
/// merged away.
std::size_t MergeDuplicates(std::vector<StatRecord>& records);

} // namespace korvalin
