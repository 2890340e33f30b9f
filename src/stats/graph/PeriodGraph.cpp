#include "stats/graph/PeriodGraph.h"

#include "base/Text.h"
#include "stats/Aliases.h"

#include <algorithm>

namespace korvalin {
namespace {

constexpr int daysPerWeek = 7;

// The borders of the periods that the options name.
class Calendar {
  public:
    Calendar(const GraphOptions& options, const Aliases& aliases)
        : options_(options), aliases_(aliases), alias_(aliases.AliasIndex(options.Alias)) {}

    bool KnowsAlias() const { return alias_ != 0; }

    Date FirstDayOf(Date day) const {
        switch (options_.Period) {
        case SumPeriod::Day: return day;
        case SumPeriod::Week:
            return day - (WeekdayOf(day) - options_.FirstWeekday + daysPerWeek) % daysPerWeek;
        case SumPeriod::BillingMonth: break;
        }
        return aliases_.PeriodBeginOf(day, alias_);
    }
    Date LastDayOf(Date day) const {
        switch (options_.Period) {
        case SumPeriod::Day: return day;
        case SumPeriod::Week: return FirstDayOf(day) + daysPerWeek - 1;
        case SumPeriod::BillingMonth: break;
        }
        return aliases_.PeriodEndOf(day, alias_);
    }

  private:
    const GraphOptions& options_;
    const Aliases& aliases_;
    std::size_t alias_;
};

void SetRange(PeriodGraph& graph, const GraphOptions& options, const Calendar& calendar, Date today) {
    const Date from = std::min(DayOf(options.From), today);
    const Date till = std::max(std::min(DayOf(options.Till), today), from);
    graph.From = calendar.FirstDayOf(from);
    graph.Till = calendar.LastDayOf(till);
}

// From the last one back: so the newest are kept, and months of different lengths need no counting.
void SetPeriods(PeriodGraph& graph, const Calendar& calendar, int maxPeriods) {
    const auto most = static_cast<std::size_t>(std::max(maxPeriods, 1));
    for (Date last = graph.Till; last >= graph.From; ++graph.PeriodsInRange) {
        const Date begin = calendar.FirstDayOf(last);
        if (graph.PeriodsInRange < most) graph.Periods.push_back({begin, last + 1});
        last = begin - 1;
    }
    std::reverse(graph.Periods.begin(), graph.Periods.end());
}

// The period that holds a moment; null when none does.
PeriodVolume* PeriodAt(std::vector<PeriodVolume>& periods, Date moment) {
    if (moment < periods.front().Begin || moment >= periods.back().End) return nullptr;
    const auto next =
        std::upper_bound(periods.begin(), periods.end(), moment,
                         [](Date date, const PeriodVolume& period) { return date < period.Begin; });
    return &*std::prev(next);
}

void NoteDay(PeriodGraph& graph, Date day) {
    graph.FirstRecord = graph.FirstRecord == 0 ? day : std::min(graph.FirstRecord, day);
    graph.LastRecord = std::max(graph.LastRecord, day);
}

void SumUp(const StatRecords& records, std::string_view alias, PeriodGraph& graph) {
    // Few texts name all records: each is compared once, not once a record.
    PooledText last;
    bool wanted = false;
    for (const StatRecord& record : records.List) {
        if (&record == records.List.data() || !record.Alias.Is(last)) {
            last = record.Alias;
            wanted = EqualsNoCase(last, alias);
        }
        if (!wanted) continue;
        NoteDay(graph, DayOf(record.LogOut));
        if (PeriodVolume* period = PeriodAt(graph.Periods, record.LogOut)) {
            period->BytesReceived += record.BytesReceived;
            period->BytesTransmitted += record.BytesTransmitted;
        }
    }
}

} // namespace

double ShownVolume(const PeriodVolume& period, bool send, bool received) {
    return (send ? period.BytesTransmitted : 0) + (received ? period.BytesReceived : 0);
}

PeriodGraph CalcGraph(const StatRecords& records, const GraphOptions& options, const Aliases& aliases,
                      Date today) {
    PeriodGraph graph;
    const Calendar calendar(options, aliases);
    if (!calendar.KnowsAlias()) return graph;
    SetRange(graph, options, calendar, DayOf(today));
    SetPeriods(graph, calendar, options.MaxPeriods);
    SumUp(records, options.Alias, graph);
    for (const PeriodVolume& period : graph.Periods)
        graph.Maximum = std::max(graph.Maximum, ShownVolume(period, options.Send, options.Received));
    return graph;
}

} // namespace korvalin
