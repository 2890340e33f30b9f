#include "stats/MonthSums.h"

#include "base/Numbers.h"
#include "base/Text.h"
#include "errors/Errors.h"
#include "platform/Clock.h"
#include "stats/Aliases.h"
#include "traffic/LineRecord.h"

namespace korvalin {

MonthSums::MonthSums(Aliases& aliases, const LineState& lines, Errors& errors, Clock& clock)
    : aliases_(aliases), lines_(lines), errors_(errors), clock_(clock) {}

void MonthSums::CalcStatsThisMonth(StatRecords& records) {
    aliases_.Clear();
    valid_ = false;
    sums_ = StatRecords();
    errors_.Step("CalcStatsThisMonth", [&] {
        aliases_.FillAlias(records);
        for (const LineRecord& line : lines_.LineTable) {
            if (!line.EntryName.empty()) aliases_.GetAlias(line.EntryName);
        }
        EnsureSums();
        if (records.List.empty()) return;
        Add(records);
        valid_ = true;
    });
}

void MonthSums::Begin(StatRecord& sum, std::size_t aliasIndex) {
    const AliasInfo& alias = aliases_.Alias(aliasIndex);
    sum = StatRecord();
    sum.Alias = sums_.Texts.Intern(alias.Alias);
    sum.StatPeriodBegin = alias.PeriodBegin;
}

void MonthSums::EnsureSums() {
    while (sums_.List.size() < aliases_.AliasCount()) {
        sums_.List.emplace_back();
        Begin(sums_.List.back(), sums_.List.size());
    }
}

void MonthSums::Add(const StatRecords& records) {
    PooledText alias;
    std::size_t index = 0;
    for (const StatRecord& record : records.List) {
        if (index == 0 || !record.Alias.Is(alias)) {
            alias = record.Alias;
            index = aliases_.AliasIndex(alias);
        }
        StatRecord& sum = sums_.List.at(index - 1);
        if (record.End() < sum.StatPeriodBegin || EqualsNoCase(record.Info, InfoRunning)) continue;
        sum.BytesReceived += record.BytesReceived;
        sum.BytesTransmitted += record.BytesTransmitted;
        sum.Duration += record.Duration;
        sum.DurationRounded += aliases_.RoundDuration(record.Duration, index);
        sum.VolumeRounded += aliases_.RoundVolume(record.Volume(), index);
        ++sum.ConnCount;
    }
}

const StatRecord& MonthSums::Sum(std::size_t aliasIndex) {
    aliases_.FollowDay();
    EnsureSums();
    StatRecord& sum = sums_.List.at(aliasIndex - 1);
    if (sum.StatPeriodBegin != aliases_.Alias(aliasIndex).PeriodBegin) Begin(sum, aliasIndex);
    return sum;
}

PeriodUse MonthSums::UseOf(std::string_view lineName, double openBytes) {
    const std::size_t index = aliases_.AliasIndex(aliases_.GetAlias(lineName));
    const double recorded = Sum(index).VolumeRounded;
    AliasInfo& alias = aliases_.Alias(index);
    const Date now = clock_.Now();
    alias.FractionElapsed =
        RoundToEven(1e4 * (alias.DaysElapsed - 1 + now - DayOf(now)) / alias.DaysInPeriod) / 1e4;
    return {aliases_.RoundVolume(openBytes, index) + recorded, alias.FreeVolumeBytes, alias.TrayVol,
            alias.FractionElapsed};
}

} // namespace korvalin
