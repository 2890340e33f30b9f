#include "stats/MonthSums.h"

#include "base/Numbers.h"
#include "base/Text.h"
#include "errors/Errors.h"
#include "platform/Clock.h"
#include "stats/Aliases.h"
#include "traffic/LineRecord.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace korvalin {
namespace {

constexpr double hoursPerDay = 24;

BilledRecord BilledOf(const OpenConnection& record) {
    return {record.LogIn, RoundToSecond(record.End), record.BytesReceived, record.BytesTransmitted,
            record.IsRas};
}

} // namespace

MonthSums::MonthSums(Aliases& aliases, const LineState& lines, Errors& errors, Clock& clock)
    : aliases_(aliases), lines_(lines), errors_(errors), clock_(clock), days_(aliases) {}

void MonthSums::CalcStatsThisMonth(StatRecords& records, std::size_t known) {
    aliases_.Clear();
    valid_ = false;
    sums_ = StatRecords();
    connections_.clear();
    days_.Begin(DayOf(clock_.Now()));
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
    days_.Add(billed, ToLower(record.LineName), index);
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
        if (IsRunning(record)) continue;
        const BilledRecord billed{record.LogIn, record.End(), record.BytesReceived, record.BytesTransmitted};
        const std::string line = ToLower(record.LineName);
        days_.Add(billed, line, index);
        if (billed.End >= sums_.List.at(index - 1).StatPeriodBegin) AddToSum(billed, line, index);
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
std::vector<MonthSums::OpenLine> MonthSums::OpenOf(std::size_t aliasIndex) {
    std::vector<OpenLine> open;
    const auto take = [&](const std::string& name, const BilledRecord& record) {
        if (aliases_.AliasIndex(aliases_.GetAlias(name)) == aliasIndex)
            open.push_back({ToLower(name), record});
    };
    if (elsewhere_) {
        for (const OpenConnection& connection : *elsewhere_)
            take(connection.LineName, BilledOf(connection));
        return open;
    }
    for (const LineRecord& line : lines_.LineTable) {
        if (!line.Connected) continue;
        const LinePart part = OpenPartOf(line);
        take(line.EntryName,
             {part.LogIn, RoundToSecond(part.End), part.BytesReceived, part.BytesTransmitted, line.IsRas});
    }
    return open;
}

MonthSums::OpenUse MonthSums::UseOfOpen(std::size_t aliasIndex, Date today) {
    OpenUse use;
    for (const OpenLine& open : OpenOf(aliasIndex)) {
        const auto last = connections_.find(open.LowerName);
        BilledConnection connection = last != connections_.end() ? last->second : BilledConnection();
        const BilledShare share = Bill(open.Record, connection, sums_.List.at(aliasIndex - 1).StatPeriodBegin,
                                       aliases_, aliasIndex);
        use.Volume += share.VolumeRounded;
        use.Online += share.DurationRounded;
        if (DayOf(open.Record.End) != today) continue; // of a recorder that has stopped
        const DayUse day = days_.ShareOf(open.Record, open.LowerName, aliasIndex);
        use.Today.Volume += day.Volume;
        use.Today.Online += day.Online;
    }
    return use;
}

AliasUse MonthSums::UseOf(std::size_t aliasIndex) {
    const Date now = clock_.Now();
    const Date today = DayOf(now);
    // Before anything is held: it may meet a line whose alias is new.
    const StatRecord recorded = Sum(aliasIndex);
    const OpenUse open = UseOfOpen(aliasIndex, today);
    AliasInfo& alias = aliases_.Alias(aliasIndex);
    alias.FractionElapsed =
        RoundToEven(1e4 * (alias.DaysElapsed - 1 + now - today) / alias.DaysInPeriod) / 1e4;
    const DayUse before = days_.On(aliasIndex, today);
    const DayUse day{before.Volume + open.Today.Volume, before.Online + open.Today.Online};
    const std::optional<DayUse> known = days_.MeanBefore(aliasIndex, today);
    const DayUse mean = known.value_or(DayUse());
    const double daysLeft = alias.PeriodEnd + 1 - now;
    const int daysToSpend = alias.DaysInPeriod - alias.DaysElapsed + 1;
    const double volume = recorded.VolumeRounded + open.Volume + alias.CorrectionBytes;
    return {alias.Alias,
            alias.PeriodBegin,
            alias.PeriodEnd,
            alias.FractionElapsed,
            alias.CorrectionBytes,
            {std::max(volume, 0.0), day.Volume, mean.Volume, alias.FreeVolumeBytes, daysLeft, daysToSpend,
             known.has_value()},
            {recorded.DurationRounded + open.Online, day.Online, mean.Online,
             std::max(alias.FreeHours, 0) / hoursPerDay, daysLeft, daysToSpend, known.has_value()}};
}

double MonthSums::TakeProvidersFigure(std::size_t aliasIndex, std::optional<double> megabytes) {
    constexpr double most = std::numeric_limits<std::int32_t>::max();
    aliases_.Correct(aliasIndex, 0);
    const double counted = UseOf(aliasIndex).Volume.Used / BytesPerAllowanceUnit;
    if (megabytes) {
        const double correction = std::clamp(std::round(*megabytes - counted), -most, most);
        aliases_.Correct(aliasIndex, static_cast<std::int32_t>(correction));
    }
    return counted;
}

AliasUse MonthSums::UseOfLine(std::string_view lineName) {
    return UseOf(aliases_.AliasIndex(aliases_.GetAlias(lineName)));
}

PeriodUse MonthSums::UseOf(std::string_view lineName) {
    const std::size_t index = aliases_.AliasIndex(aliases_.GetAlias(lineName));
    const AliasUse use = UseOf(index);
    return {use.Volume.Used, use.Volume.Allowance, aliases_.Alias(index).TrayVol, use.FractionElapsed};
}

} // namespace korvalin
