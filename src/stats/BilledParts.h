#pragma once

#include "base/Date.h"

#include <cstddef>
#include <cstdint>

namespace korvalin {

class Aliases;
struct StatRecord;

/// A record as the sums take it.
struct BilledRecord {
    Date LogIn = 0;
    Date End = 0;
    double BytesReceived = 0;
    double BytesTransmitted = 0;
    /// A dial-up line's: it may describe a connection that has a record already, and then takes its place.
    bool MayRepeat = false;
};

/// The last connection of a line within a period: what a further part of it is added to before rounding.
struct BilledConnection {
    BilledRecord Last;     ///< its last record
    Date Duration = 0;     ///< of all its parts in the period
    double Volume = 0;     ///< likewise, in bytes
    Date PeriodBegin = -1; ///< whose period
};

/// What a record adds to a sum.
struct BilledShare {
    double BytesReceived = 0;
    double BytesTransmitted = 0;
    Date Duration = 0;
    Date DurationRounded = 0;
    double VolumeRounded = 0;
    std::int32_t ConnCount = 0;
};

/// Whether a record can be a part of a connection that was recorded day by day.
bool IsPartOfDay(const BilledRecord& record);

/// What a record adds to the sum of a period by an alias's rules, after `connection`, the line's last one in
/// this period. That becomes the record's own. Parts of one connection, the earlier one till 23:59:59 and the
/// later from 00:00:00 on, are rounded as the one that they are.
BilledShare Bill(const BilledRecord& record, BilledConnection& connection, Date periodBegin,
                 const Aliases& aliases, std::size_t aliasIndex);

/// Adds what one record is billed to the sum of its period.
void AddShare(StatRecord& sum, const BilledShare& share);

} // namespace korvalin
