// What the lists of the statistics window show: the columns of records and of sums, cell by cell.
#pragma once

#include "base/Date.h"
#include "stats/StatRecord.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace korvalin {

struct Locale;

/// The unit that volumes are shown in.
struct VolumeUnit {
    std::string Name = "MB";
    double Bytes = 1'000'000;
};

/// A column of a list: what it shows of a record, and its header's text in section "frmStatistik".
struct StatColumn {
    enum class Field {
        Alias,
        LogIn,
        Duration,
        LogOut,
        BytesTransmitted,
        BytesReceived,
        Total,
        Info,
        FileIndex,
        PeriodLabel,
        ConnCount,
        DurationRounded,
        VolumeRounded
    };
    Field Shows;
    int HeaderText;
};

/// The columns of connections; FileIndex, the last one, is not for display.
const std::vector<StatColumn>& RecordColumns();
/// The columns of sums per period.
const std::vector<StatColumn>& SumColumns();

/// "9:59", "10:00", "1:02:03", "12:34:56", "36:05:07": minutes and seconds, with hours from one hour on, and
/// hours beyond a day counted on.
std::string DurationText(Date duration);

/// A volume in the unit, grouped and with two decimals, and the unit's name: "1,234.50 MB".
std::string VolumeText(double bytes, const VolumeUnit& unit, const Locale& locale);

/// The text of a cell. The log-out of an open connection is empty.
std::string CellText(const StatRecord& record, StatColumn::Field field, const VolumeUnit& unit,
                     const Locale& locale);

/// Whether figures stand in the column, which are aligned to the right.
bool IsFigure(StatColumn::Field field);

/// The longest text that the column, no note's, is likely to show; its width follows from it.
std::string SampleText(StatColumn::Field field, bool ofSums, const Locale& locale);

/// The texts of a column among which the widest is: of figures the largest one's, each name once.
std::vector<std::string> WidestTexts(const std::vector<StatRecord>& records, StatColumn::Field field,
                                     const VolumeUnit& unit, const Locale& locale);

/// The rows of a list: the records of an alias (all of them when it is empty; letter case ignored), as
/// indices into the records. Numbers the records' ListRow from 1, 0 for those left out.
std::vector<std::uint32_t> FilterRows(std::vector<StatRecord>& records, const std::string& alias);

/// Sorts rows by what the column shows; rows that show the same keep their order. `pause` is called now and
/// then and may end the sort by throwing.
void SortRows(const std::vector<StatRecord>& records, StatColumn::Field field, bool ascending,
              const Locale& locale, std::vector<std::uint32_t>& rows,
              const std::function<void()>& pause = {});

} // namespace korvalin
