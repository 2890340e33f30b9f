#include "stats/StatCells.h"

#include "base/Locale.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "stats/SortStats.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>

namespace korvalin {
namespace {

using Field = StatColumn::Field;

// The value that a column of figures is sorted by.
double SortValue(const StatRecord& record, Field field) {
    switch (field) {
    case Field::LogIn: return record.LogIn;
    case Field::Duration: return record.Duration;
    case Field::LogOut: return record.LogOut;
    case Field::BytesTransmitted: return record.BytesTransmitted;
    case Field::BytesReceived: return record.BytesReceived;
    case Field::Total: return record.Volume();
    case Field::FileIndex: return record.FileIndex;
    case Field::PeriodLabel: return record.StatPeriodBegin;
    case Field::ConnCount: return record.ConnCount;
    case Field::DurationRounded: return record.DurationRounded;
    case Field::VolumeRounded: return record.VolumeRounded;
    default: return 0;
    }
}

// The position of each record in the order of its alias, equal aliases on one position.
std::vector<double> AliasPositions(const std::vector<StatRecord>& records, const Locale& locale) {
    std::vector<double> positions(records.size());
    double position = 0;
    const StatRecord* last = nullptr;
    for (const std::uint32_t i : StatOrder(records, {"Alias", true}, {"", true}, locale)) {
        const StatRecord& record = records[i];
        const bool same =
            last != nullptr && (record.Alias.Is(last->Alias) || EqualsNoCase(record.Alias, last->Alias));
        if (!same) ++position;
        positions[i] = position;
        last = &record;
    }
    return positions;
}

// Counts comparisons and calls `pause` once in so many.
class Pauses {
  public:
    explicit Pauses(const std::function<void()>& pause) : pause_(pause) {}
    void Count() {
        if (++count_ % comparisonsPerPause == 0 && pause_) pause_();
    }

  private:
    static constexpr unsigned comparisonsPerPause = 1 << 18;
    const std::function<void()>& pause_;
    unsigned count_ = 0;
};

template <typename Less>
void StableSort(std::vector<std::uint32_t>& rows, bool ascending, Pauses& pauses, const Less& less) {
    std::stable_sort(rows.begin(), rows.end(), [&](std::uint32_t left, std::uint32_t right) {
        pauses.Count();
        return ascending ? less(left, right) : less(right, left);
    });
}

// Eight bytes of a text from `begin` on, as a number that compares like them; missing ones are 0.
std::uint64_t EightBytes(std::string_view text, std::size_t begin) {
    constexpr std::size_t count = 8;
    std::uint64_t bytes = 0;
    for (std::size_t i = begin; i < begin + count; ++i)
        bytes = bytes << 8 | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
    return bytes;
}

// A note's place among the others: most differ within sixteen bytes, and only those that do not are looked
// up while sorting.
struct NoteEntry {
    std::uint64_t First, Second;
    std::uint32_t Position, Row; // notes that are equal keep their order

    int Compare(const NoteEntry& other, const std::vector<StatRecord>& records) const {
        if (First != other.First) return First < other.First ? -1 : 1;
        if (Second != other.Second) return Second < other.Second ? -1 : 1;
        return records[Row].Info.View().compare(records[other.Row].Info.View());
    }
};

void SortByNote(const std::vector<StatRecord>& records, bool ascending, std::vector<std::uint32_t>& rows,
                Pauses& pauses) {
    std::vector<NoteEntry> entries;
    entries.reserve(rows.size());
    for (const std::uint32_t row : rows) {
        const std::string_view note = records[row].Info;
        entries.push_back(
            {EightBytes(note, 0), EightBytes(note, 8), static_cast<std::uint32_t>(entries.size()), row});
    }
    std::sort(entries.begin(), entries.end(), [&](const NoteEntry& left, const NoteEntry& right) {
        pauses.Count();
        const int order = left.Compare(right, records);
        return order == 0 ? left.Position < right.Position : (order < 0) == ascending;
    });
    std::transform(entries.begin(), entries.end(), rows.begin(),
                   [](const NoteEntry& entry) { return entry.Row; });
}

} // namespace

const std::vector<StatColumn>& RecordColumns() {
    static const std::vector<StatColumn> columns = {{Field::Alias, 12},
                                                    {Field::LogIn, 13},
                                                    {Field::Duration, 14},
                                                    {Field::LogOut, 15},
                                                    {Field::BytesTransmitted, 16},
                                                    {Field::BytesReceived, 17},
                                                    {Field::Total, 9},
                                                    {Field::Info, 18},
                                                    {Field::FileIndex, 19}};
    return columns;
}

const std::vector<StatColumn>& SumColumns() {
    static const std::vector<StatColumn> columns = {
        {Field::Alias, 12},    {Field::PeriodLabel, 24},      {Field::ConnCount, 20},
        {Field::Duration, 14}, {Field::BytesTransmitted, 16}, {Field::BytesReceived, 17},
        {Field::Total, 9},     {Field::DurationRounded, 21},  {Field::VolumeRounded, 22}};
    return columns;
}

std::string DurationText(Date duration) {
    const auto seconds = std::max(std::llround(duration * SecondsPerDay), 0LL);
    const auto minutes = seconds / 60;
    if (minutes < 60) return fmt::format("{}:{:02}", minutes, seconds % 60);
    return fmt::format("{}:{:02}:{:02}", minutes / 60, minutes % 60, seconds % 60);
}

std::string VolumeText(double bytes, const VolumeUnit& unit, const Locale& locale) {
    return FormatNumber(bytes / unit.Bytes, "#,##0.00", locale) + " " + unit.Name;
}

std::string CellText(const StatRecord& record, Field field, const VolumeUnit& unit, const Locale& locale) {
    switch (field) {
    case Field::Alias: return std::string(record.Alias);
    case Field::LogIn: return FormatDateGeneral(record.LogIn, locale);
    case Field::Duration: return DurationText(record.Duration);
    case Field::LogOut: return IsRunning(record) ? std::string() : FormatDateGeneral(record.LogOut, locale);
    case Field::BytesTransmitted: return VolumeText(record.BytesTransmitted, unit, locale);
    case Field::BytesReceived: return VolumeText(record.BytesReceived, unit, locale);
    case Field::Total: return VolumeText(record.Volume(), unit, locale);
    case Field::Info: return std::string(record.Info);
    case Field::FileIndex: return std::to_string(record.FileIndex);
    case Field::PeriodLabel: return std::string(record.PeriodLabel);
    case Field::ConnCount: return FormatNumber(record.ConnCount, "#,##0", locale);
    case Field::DurationRounded: return DurationText(record.DurationRounded);
    case Field::VolumeRounded: return VolumeText(record.VolumeRounded, unit, locale);
    }
    return {};
}

bool IsFigure(Field field) {
    return field != Field::Alias && field != Field::LogIn && field != Field::LogOut && field != Field::Info &&
           field != Field::PeriodLabel;
}

std::string SampleText(Field field, bool ofSums, const Locale& locale) {
    const Date sample = DateSerial(2004, 12, 31) + TimeSerial(22, 22, 22);
    const std::string date = FormatPattern(sample, locale.ShortDate);
    switch (field) {
    case Field::Alias: return "Mobile line";
    case Field::LogIn:
    case Field::LogOut: return FormatDateGeneral(sample, locale);
    case Field::Duration:
    case Field::DurationRounded: return ofSums ? "1023:59:59" : "23:59:59";
    case Field::PeriodLabel: return date + " - " + date;
    case Field::ConnCount: return "1,000";
    case Field::FileIndex: return "1000000";
    default: return FormatNumber(12345.67, "#,##0.00", locale) + " Mbit";
    }
}

std::vector<std::string> WidestTexts(const std::vector<StatRecord>& records, Field field,
                                     const VolumeUnit& unit, const Locale& locale) {
    if (records.empty() || field == Field::Info) return {}; // a note may be of any length
    const auto text = [&](const StatRecord& record) { return CellText(record, field, unit, locale); };
    if (IsFigure(field)) {
        const auto largest = std::max_element(records.begin(), records.end(),
                                              [field](const StatRecord& left, const StatRecord& right) {
                                                  return SortValue(left, field) < SortValue(right, field);
                                              });
        return {text(*largest)};
    }
    if (field != Field::Alias && field != Field::PeriodLabel) return {text(records.front())};
    std::vector<std::string> texts;
    std::unordered_set<const void*> seen;
    const void* last = nullptr;
    for (const StatRecord& record : records) {
        const PooledText name = field == Field::Alias ? record.Alias : record.PeriodLabel;
        if (std::exchange(last, name.Identity()) == name.Identity()) continue;
        if (seen.insert(last).second) texts.emplace_back(name.View());
    }
    return texts;
}

std::vector<std::uint32_t> FilterRows(std::vector<StatRecord>& records, const std::string& alias) {
    std::vector<std::uint32_t> rows;
    if (alias.empty()) rows.reserve(records.size());
    PooledText last; // of the last record, whose answer is known
    bool wanted = alias.empty();
    bool known = false;
    for (std::uint32_t i = 0; i < records.size(); ++i) {
        StatRecord& record = records[i];
        if (!alias.empty() && !(known && record.Alias.Is(last))) wanted = EqualsNoCase(record.Alias, alias);
        known = true;
        last = record.Alias;
        record.ListRow = 0;
        if (!wanted) continue;
        rows.push_back(i);
        record.ListRow = static_cast<std::int32_t>(rows.size());
    }
    return rows;
}

void SortRows(const std::vector<StatRecord>& records, Field field, bool ascending, const Locale& locale,
              std::vector<std::uint32_t>& rows, const std::function<void()>& pause) {
    Pauses pauses(pause);
    if (field == Field::Info) return SortByNote(records, ascending, rows, pauses);
    std::vector<double> values;
    if (field == Field::Alias) {
        values = AliasPositions(records, locale);
    } else {
        values.reserve(records.size());
        for (const StatRecord& record : records)
            values.push_back(SortValue(record, field));
    }
    StableSort(rows, ascending, pauses,
               [&](std::uint32_t left, std::uint32_t right) { return values[left] < values[right]; });
}

} // namespace korvalin
