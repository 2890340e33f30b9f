#include "stats/PeriodSums.h"

#include "base/Locale.h"
#include "base/Text.h"
#include "errors/Errors.h"
#include "stats/Aliases.h"
#include "stats/BilledParts.h"
#include "stats/SortStats.h"

#include <string>
#include <unordered_map>

namespace korvalin {
namespace {

constexpr int daysPerWeek = 7;

} // namespace

void PeriodSums::CalcStatSums(const StatRecords& records, SumPeriod period, StatRecords& sums) const {
    sums = StatRecords();
    errors_.Step("CalcStatSums", [&] { SumUp(records, period, sums); });
    errors_.Step("CalcStatSums", [&] {
        SortStats(sums.List, {"Alias", true}, {"StatPeriodBegin", false}, locale_);
    });
}

void PeriodSums::SumUp(const StatRecords& records, SumPeriod period, StatRecords& sums) const {
    PooledText alias;
    std::size_t aliasIndex = 0;
    Date limit = 0; // midnight after the open sum's last day
    // Of lines that were recorded day by day; few records need a look-up.
    std::unordered_map<std::string, BilledConnection> connections;
    for (const std::uint32_t i : StatOrder(records.List, {"Alias", true}, {"LogIn", true}, locale_)) {
        const StatRecord& record = records.List[i];
        const bool sameAlias =
            !sums.List.empty() && (record.Alias.Is(alias) || EqualsNoCase(record.Alias, alias));
        if (!sameAlias) aliasIndex = aliases_.AliasIndex(record.Alias);
        alias = record.Alias;
        // What ends at midnight belongs to the day before, what begins then to the next.
        if (!sameAlias || record.End() > limit || record.LogIn >= limit) {
            sums.List.emplace_back();
            Begin(sums.List.back(), record, aliasIndex, period, sums.Texts);
            limit = sums.List.back().StatPeriodEnd + 1;
            connections.clear();
        }
        StatRecord& sum = sums.List.back();
        const BilledRecord billed{record.LogIn, record.End(), record.BytesReceived, record.BytesTransmitted};
        BilledConnection alone;
        BilledConnection& connection = IsPartOfDay(billed) ? connections[ToLower(record.LineName)] : alone;
        AddShare(sum, Bill(billed, connection, sum.StatPeriodBegin, aliases_, aliasIndex));
    }
}

void PeriodSums::Begin(StatRecord& sum, const StatRecord& first, std::size_t alias, SumPeriod period,
                       TextPool& texts) const {
    sum.Alias = texts.Intern(first.Alias);
    const Date end = first.End();
    const Date day = DayOf(end);
    const auto shortDate = [&](Date date) { return FormatPattern(date, locale_.ShortDate); };
    std::string label;
    switch (period) {
    case SumPeriod::Day:
        sum.StatPeriodBegin = sum.StatPeriodEnd = day;
        label = shortDate(day) + " " + locale_.ShortDayNames.at(static_cast<std::size_t>(WeekdayOf(day)));
        break;
    case SumPeriod::Week:
        sum.StatPeriodBegin = day - WeekdayOf(day);
        sum.StatPeriodEnd = sum.StatPeriodBegin + daysPerWeek - 1;
        label = shortDate(sum.StatPeriodBegin) + "-" + shortDate(sum.StatPeriodEnd);
        break;
    case SumPeriod::BillingMonth:
        sum.StatPeriodBegin = aliases_.PeriodBeginOf(end, alias);
        sum.StatPeriodEnd = aliases_.PeriodEndOf(end, alias);
        label = shortDate(sum.StatPeriodBegin) + " - " + shortDate(sum.StatPeriodEnd);
        if (aliases_.Alias(alias).MonthStartDay == 1) {
            const DateParts begin = SplitDate(sum.StatPeriodBegin);
            label = fmt::format("{} {:04}", locale_.MonthNames.at(static_cast<std::size_t>(begin.Month) - 1),
                                begin.Year);
        }
        break;
    }
    sum.PeriodLabel = texts.Intern(label);
}

} // namespace korvalin
