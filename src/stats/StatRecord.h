#pragma once

#include "base/Date.h"
#include "base/Text.h"
#include "stats/TextPool.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvalin {

/// One recorded connection, or the sum of several in a period ("sums" fields). Its texts live in the
/// StatRecords that holds it. Aligned so that moving it touches two lines of the cache, not three.
struct alignas(64) StatRecord {
    std::int32_t FileIndex = 0; ///< position among the valid lines of the file, from 1; 0: not from the file
    std::int32_t ListRow = 0;   ///< row in the list that shows it; 0: not shown
    PooledText LineName;        ///< phone-book entry or adapter
    PooledText Alias;           ///< the name that tariffs belong to
    Date LogIn = 0;
    Date LogOut = 0; ///< LogIn + Duration
    Date Duration = 0;
    double BytesReceived = 0;
    double BytesTransmitted = 0;
    PooledText Info;            ///< how the record came to be written; "Running" while the line is open
    double VolumeRounded = 0;   ///< sums: after rounding each connection's volume
    Date DurationRounded = 0;   ///< sums: after rounding each connection's seconds
    std::int32_t ConnCount = 0; ///< sums
    PooledText PeriodLabel;     ///< sums: name of the period, for display
    Date StatPeriodBegin = 0;   ///< sums: first day
    Date StatPeriodEnd = 0;     ///< sums: last day
    PooledText User;

    /// When the connection ended, to the second.
    Date End() const { return RoundToSecond(LogIn + Duration); }
    double Volume() const { return BytesReceived + BytesTransmitted; }
};

/// What Info says of a connection that is still open.
inline constexpr std::string_view InfoRunning = "Running";

inline bool IsRunning(const StatRecord& record) {
    return EqualsNoCase(record.Info, InfoRunning);
}

/// How far a file was read, and what stood there: to find what was appended since.
struct FileMark {
    std::uintmax_t Bytes = 0;
    std::string LastBytes;
};

/// Records and the texts they refer to.
struct alignas(64) StatRecords {
    std::vector<StatRecord> List;
    TextPool Texts;
    FileMark ReadTo;
};

} // namespace korvalin
