#include "stats/BilledParts.h"

#include "stats/Aliases.h"
#include "stats/RecordPlace.h"

#include <algorithm>

namespace korvalin {
namespace {

Date DurationOf(const BilledRecord& record) {
    return record.End - record.LogIn;
}

double VolumeOf(const BilledRecord& record) {
    return record.BytesReceived + record.BytesTransmitted;
}

bool GoesOn(const BilledRecord& before, const BilledRecord& record) {
    return record.LogIn == DayOf(record.LogIn) && before.End == EndOfDay(before.End) &&
           before.End < record.LogIn;
}

// The record of the same connection that was written before is replaced.
BilledRecord Merged(const BilledRecord& before, const BilledRecord& record) {
    BilledRecord merged = before.End > record.End ? before : record;
    merged.LogIn = std::min(before.LogIn, record.LogIn);
    return merged;
}

} // namespace

bool IsPartOfDay(const BilledRecord& record) {
    return record.LogIn == DayOf(record.LogIn) || record.End == EndOfDay(record.End);
}

BilledShare Bill(const BilledRecord& record, BilledConnection& connection, Date periodBegin,
                 const Aliases& aliases, std::size_t aliasIndex) {
    const bool isKnown = connection.PeriodBegin == periodBegin;
    const BilledRecord before = isKnown ? connection.Last : BilledRecord();
    BilledRecord taken = record;
    BilledConnection after{record, DurationOf(record), VolumeOf(record), periodBegin};
    bool isNew = true;
    if (isKnown && GoesOn(before, record)) {
        after.Duration += connection.Duration;
        after.Volume += connection.Volume;
        isNew = false;
    } else if (isKnown && record.MayRepeat &&
               WouldMerge({before.LogIn, before.End}, {record.LogIn, record.End})) {
        after.Last = Merged(before, record);
        after.Duration = connection.Duration - DurationOf(before) + DurationOf(after.Last);
        after.Volume = connection.Volume - VolumeOf(before) + VolumeOf(after.Last);
        taken.BytesReceived = after.Last.BytesReceived - before.BytesReceived;
        taken.BytesTransmitted = after.Last.BytesTransmitted - before.BytesTransmitted;
        isNew = false;
    }
    const Date durationBefore = isNew ? 0 : connection.Duration;
    BilledShare share{taken.BytesReceived,
                      taken.BytesTransmitted,
                      after.Duration - durationBefore,
                      aliases.RoundDuration(after.Duration, aliasIndex),
                      aliases.RoundVolume(after.Volume, aliasIndex),
                      isNew ? 1 : 0};
    if (!isNew) {
        share.DurationRounded -= aliases.RoundDuration(connection.Duration, aliasIndex);
        share.VolumeRounded -= aliases.RoundVolume(connection.Volume, aliasIndex);
    }
    connection = after;
    return share;
}

void AddShare(StatRecord& sum, const BilledShare& share) {
    sum.BytesReceived += share.BytesReceived;
    sum.BytesTransmitted += share.BytesTransmitted;
    sum.Duration += share.Duration;
    sum.DurationRounded += share.DurationRounded;
    sum.VolumeRounded += share.VolumeRounded;
    sum.ConnCount += share.ConnCount;
}

} // namespace korvalin
