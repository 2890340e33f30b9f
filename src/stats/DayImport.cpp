#include "stats/DayImport.h"

#include "base/Locale.h"
#include "base/Text.h"
#include "lang/Language.h"
#include "stats/StatRecord.h"

#include <algorithm>
#include <map>
#include <set>

namespace korvalin {
namespace {

// What the records of a line say of the days that may be imported.
struct LineDays {
    std::set<Date> Touched;
    std::map<Date, StatFields> Whole; // records from the first second to the last one
};

class Calendar {
  public:
    // A record may last for centuries, if the file says so: only days between the two are looked at.
    Calendar(const StatRecords& there, Date first, Date last) : first_(first), last_(last) {
        for (const StatRecord& record : there.List)
            Add(FieldsOf(record));
    }

    void Add(const StatFields& fields) {
        const Date logIn = RoundToSecond(fields.LogIn);
        const Date end = RoundToSecond(fields.LogIn + fields.Duration);
        LineDays& line = lines_[ToLower(fields.LineName)];
        for (Date day = std::max(DayOf(logIn), first_); day <= std::min(DayOf(end), last_); ++day)
            line.Touched.insert(day);
        if (logIn == DayOf(logIn) && end == EndOfDay(logIn)) line.Whole[logIn] = fields;
    }

    bool IsTouched(const std::string& lowerName, Date day) const {
        const auto line = lines_.find(lowerName);
        return line != lines_.end() && line->second.Touched.contains(day);
    }

    bool IsTouchedByOthersThan(const std::set<std::string>& lowerNames, Date day) const {
        return std::any_of(lines_.begin(), lines_.end(), [&](const auto& line) {
            return !lowerNames.contains(line.first) && line.second.Touched.contains(day);
        });
    }

    bool Holds(const std::string& lowerName, const CountedDay& counted) const {
        const auto line = lines_.find(lowerName);
        if (line == lines_.end()) return false;
        const auto whole = line->second.Whole.find(counted.Day);
        return whole != line->second.Whole.end() && whole->second.BytesReceived == counted.BytesReceived &&
               whole->second.BytesTransmitted == counted.BytesTransmitted;
    }

  private:
    Date first_, last_;
    std::map<std::string, LineDays> lines_; // by lower-case name
};

// As the system names wireless adapters, modems and dialed links.
bool IsNamedOtherwise(std::string_view adapter) {
    constexpr std::string_view beginnings[] = {"wl", "ww", "ath", "ppp"};
    return std::any_of(std::begin(beginnings), std::end(beginnings),
                       [&](std::string_view beginning) { return StartsWithNoCase(adapter, beginning); });
}

StatFields RecordOf(const CountedDay& counted, std::string_view note) {
    return {counted.Adapter,
            counted.Day,
            EndOfDay(counted.Day) - counted.Day,
            counted.BytesTransmitted,
            counted.BytesReceived,
            note,
            {}};
}

// Under which the line is found again once the record is in the file.
std::string LowerNameOf(const CountedDay& counted, const Locale& locale) {
    std::string line;
    WriteStatRecord(line, RecordOf(counted, {}));
    const auto fields = ParseStatLine(std::string_view(line).substr(0, line.find('\r')), locale);
    return ToLower(fields ? fields->LineName : counted.Adapter);
}

} // namespace

DayImport ImportDays(const std::vector<CountedDay>& days, const StatRecords& there, Date today,
                     std::string_view note, const Locale& locale) {
    DayImport import;
    if (days.empty()) return import;
    const auto [first, last] = std::minmax_element(
        days.begin(), days.end(), [](const CountedDay& a, const CountedDay& b) { return a.Day < b.Day; });
    Calendar calendar(there, first->Day, last->Day);
    std::set<std::string> names;
    for (const CountedDay& counted : days)
        names.insert(LowerNameOf(counted, locale));
    for (const CountedDay& counted : days) {
        if (import.Adapters.empty() || import.Adapters.back().Adapter != counted.Adapter)
            import.Adapters.push_back({counted.Adapter});
        ImportedAdapter& adapter = import.Adapters.back();
        const std::string name = LowerNameOf(counted, locale);
        if (counted.Day >= today) {
            ++adapter.Running;
        } else if (counted.BytesReceived + counted.BytesTransmitted == 0) {
            ++adapter.Empty;
        } else if (calendar.Holds(name, counted)) {
            ++adapter.Known;
        } else if (calendar.IsTouched(name, counted.Day) ||
                   (IsNamedOtherwise(counted.Adapter) &&
                    calendar.IsTouchedByOthersThan(names, counted.Day))) {
            ++adapter.Recorded;
        } else {
            ++adapter.Taken;
            import.Records.push_back(RecordOf(counted, note));
            calendar.Add(import.Records.back());
        }
    }
    return import;
}

std::string ImportNote(Language& language, Date now, const Locale& locale) {
    return FormatPattern(now, locale.ShortDate) + " " + FormatPattern(now, locale.Time) + " " +
           language.Lng("modStats", 20);
}

} // namespace korvalin
