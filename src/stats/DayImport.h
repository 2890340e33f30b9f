#pragma once

#include "platform/DayCounts.h"
#include "stats/StatLine.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

class Language;
struct StatRecords;

/// What becomes of the days of an adapter.
struct ImportedAdapter {
    std::string Adapter;
    std::size_t Taken = 0;
    std::size_t Known = 0;    ///< left, as they were imported before
    std::size_t Recorded = 0; ///< left, as the line has records of them, or a line that may be the adapter's
    std::size_t Running = 0;  ///< left, as they have not ended
    std::size_t Empty = 0;    ///< left, as nothing has moved
};

/// The records that are made of another program's days.
struct DayImport {
    std::vector<StatFields> Records;
    std::vector<ImportedAdapter> Adapters;
};

/// Makes a record of each day before `today` that no record of the line touches: neither one of those that
/// are there, the open ones included, nor one of the import. The records' texts are those of `days` and
/// `note`. Adapters whose lines are called otherwise (after their network, or a phone-book entry) get no day
/// on which a line has records that is none of the adapters'.
DayImport ImportDays(const std::vector<CountedDay>& days, const StatRecords& there, Date today,
                     std::string_view note, const Locale& locale);

/// The note of records that are imported now: "2024-03-15 12:00:00 Imported from vnStat".
std::string ImportNote(Language& language, Date now, const Locale& locale);

} // namespace korvalin
