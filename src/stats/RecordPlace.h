#pragma once

#include "base/Date.h"

#include <vector>

namespace korvalin {

/// From when till when a record lasts, in whole seconds.
struct RecordTime {
    Date LogIn = 0;
    Date End = 0;
};

/// Whether a load would take two records of one line for the same connection, and merge them.
bool WouldMerge(const RecordTime& one, const RecordTime& other);

/// Where in its day a record can stand without being merged with others of its line: where it is, when it
/// can, else as near as possible. After a clock that was set back, new records lie among older ones.
RecordTime FindPlace(const RecordTime& wanted, const std::vector<RecordTime>& others);

} // namespace korvalin
