#include "stats/MonthSums.h"

#include "base/Numbers.h"
#include "base/Text.h"
#include "errors/Errors.h"
#include "platform/Clock.h"
#include "stats/Aliases.h"
#include "traffic/LineRecord.h"

#include <algorithm>

namespace korvalin {
namespace {

BilledRecord BilledOf(const OpenConnection& record) {
    return {record.LogIn, RoundToSecond(record.End), record.BytesReceived, record.BytesTransmitted,
            record.IsRas};
}

} // namespace

MonthSums::MonthSums(Aliases& aliases, const LineState& lines, Errors& errors, Clock& clock)
    : aliases_(aliases), lines_(lines), errors_(errors), clock_(clock) {}

void MonthSums::CalcStatsThisMonth(StatRecords& records, std::size_t known) {
    aliases_.Clear();
    valid_ = false;
    sums_ = StatRecords();
    connections_.clear();
    errors_.Step("CalcStatsThisMonth", [&] {
        aliases_.FillAlias(records);
        for (const LineRecord& line : lines_.LineTable) {
            if (!line.EntryName.empty()) aliases_.GetAlias(line.EntryName);
        }
        EnsureSums();
        AddAll(records);
        const std::vector<OpenConnection> made = made_;
        for (std::size_t i = std::min(known, made.size()); i < made.size(); ++i)
            AddRecord(made[i]);
        valid_ = true;
    });
}

void MonthSums::Add(const OpenConnection& record) {
    made_.push_back(record);
    errors_.Step("CalcStatsThisMonth", [&] { AddRecord(record); });
}

void MonthSums::AddRecord(const OpenConnection& record) {
    const std::size_t index = aliases_.AliasIndex(aliases_.GetAlias(record.LineName));
    const BilledRecord billed = BilledOf(record);
    if (billed.End >= Sum(index).StatPeriodBegin) AddToSum(billed, ToLower(record.LineName), index);
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

void MonthSums::AddAll(const StatRecords& records) {
    PooledText alias;
    std::size_t index = 0;
    for (const StatRecord& record : records.List) {
        if (index == 0 || !record.Alias.Is(alias)) {
            alias = record.Alias;
            index = aliases_.AliasIndex(alias);
        }
        const Date end = record.End();
        if (end < sums_.List.at(index - 1).StatPeriodBegin || EqualsNoCase(record.Info, InfoRunning))
            continue;
        AddToSum({record.LogIn, end, record.BytesReceived, record.BytesTransmitted}, ToLower(record.LineName),
                 index);
    }
}

void MonthSums::AddToSum(const BilledRecord& record, const std::string& lineName, std::size_t aliasIndex) {
    StatRecord& sum = sums_.List.at(aliasIndex - 1);
    AddShare(sum, Bill(record, connections_[lineName], sum.StatPeriodBegin, aliases_, aliasIndex));
}

const StatRecord& MonthSums::Sum(std::size_t aliasIndex) {
    aliases_.FollowDay();
    EnsureSums();
    StatRecord& sum = sums_.List.at(aliasIndex - 1);
    if (sum.StatPeriodBegin != aliases_.Alias(aliasIndex).PeriodBegin) Begin(sum, aliasIndex);
    return sum;
}

// Asked for several times a second.
double MonthSums::OpenVolume(std::size_t aliasIndex) {
    double volume = 0;
    if (elsewhere_) {
        for (const OpenConnection& open : *elsewhere_)
            volume += OpenVolume(aliasIndex, open.LineName, BilledOf(open));
        return volume;
    }
    for (const LineRecord& line : lines_.LineTable) {
        if (!line.Connected) continue;
        const LinePart part = OpenPartOf(line);
        volume += OpenVolume(
            aliasIndex, line.EntryName,
            {part.LogIn, RoundToSecond(part.End), part.BytesReceived, part.BytesTransmitted, line.IsRas});
    }
    return volume;
}

double MonthSums::OpenVolume(std::size_t aliasIndex, const std::string& lineName, const BilledRecord& open) {
    if (aliases_.AliasIndex(aliases_.GetAlias(lineName)) != aliasIndex) return 0;
    const auto last = connections_.find(ToLower(lineName));
    BilledConnection connection = last != connections_.end() ? last->second : BilledConnection();
    return Bill(open, connection, sums_.List.at(aliasIndex - 1).StatPeriodBegin, aliases_, aliasIndex)
        .VolumeRounded;
}

PeriodUse MonthSums::UseOf(std::string_view lineName) {
    const std::size_t index = aliases_.AliasIndex(aliases_.GetAlias(lineName));
    // Before anything is held: it may meet a line whose alias is new.
    const double used = Sum(index).VolumeRounded + OpenVolume(index);
    AliasInfo& alias = aliases_.Alias(index);
    const Date now = clock_.Now();
    alias.FractionElapsed =
        RoundToEven(1e4 * (alias.DaysElapsed - 1 + now - DayOf(now)) / alias.DaysInPeriod) / 1e4;
    return {used, alias.FreeVolumeBytes, alias.TrayVol, alias.FractionElapsed};
}

} // namespace korvalin
