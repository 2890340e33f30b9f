#include "stats/Aliases.h"

#include "base/Numbers.h"
#include "base/Text.h"
#include "errors/Errors.h"
#include "lang/UnitFormat.h"
#include "platform/Clock.h"
#include "settings/Settings.h"
#include "stats/BillingPeriod.h"
#include "stats/Forecast.h"

namespace korvalin {
namespace {

std::size_t Find(const std::unordered_map<std::string, std::size_t>& lookup, const std::string& lowerName) {
    const auto found = lookup.find(lowerName);
    return found == lookup.end() ? 0 : found->second;
}

} // namespace

Aliases::Aliases(Settings& settings, Errors& errors, Clock& clock, const UnitFormat& units)
    : settings_(settings), errors_(errors), clock_(clock), units_(units) {}

const std::string& Aliases::GetAlias(std::string_view lineName) {
    std::size_t index = Find(lineIndex_, ToLower(lineName));
    if (index == 0) index = AddLine(std::string(lineName));
    return lines_[index - 1].Alias;
}

std::string Aliases::ReadAlias(const std::string& lineName) {
    const auto key = Keys::Alias(lineName);
    std::string alias = settings_.Get(key);
    if (alias.empty()) settings_.Set(key, alias = lineName);
    return alias;
}

std::size_t Aliases::AddLine(const std::string& lineName) {
    AliasInfo line;
    line.LineName = line.Alias = lineName;
    try {
        line.Alias = ReadAlias(lineName);
    } catch (const std::exception&) {
        errors_.WriteErrorLog("GetAlias", "Alias Error");
    }
    if (AliasIndex(line.Alias) == 0) {
        aliases_.emplace_back();
        aliasIndex_[ToLower(line.Alias)] = aliases_.size();
        FillAliasInfo(aliases_.size(), line.Alias);
    }
    lines_.push_back(std::move(line));
    lineIndex_[ToLower(lineName)] = lines_.size();
    return lines_.size();
}

void Aliases::FillAlias(StatRecords& records) {
    const StatRecord* last = nullptr;
    for (StatRecord& record : records.List) {
        const bool sameLine = last != nullptr && (record.LineName.Is(last->LineName) ||
                                                  EqualsNoCase(record.LineName, last->LineName));
        record.Alias = sameLine ? last->Alias : records.Texts.Intern(GetAlias(record.LineName));
        last = &record;
    }
}

void Aliases::FillAliasInfo(std::size_t aliasIndex, std::string_view aliasName) {
    errors_.Step("FillAliasInfo", [&] {
        AliasInfo& info = Alias(aliasIndex);
        if (!aliasName.empty()) info.Alias = aliasName;
        if (day_ == 0) day_ = DayOf(clock_.Now());
        ReadTariff(info);
    });
}

void Aliases::ReadTariff(AliasInfo& info) {
    info.FreeHours = settings_.Get(Keys::FreeHours(info.Alias));
    info.FreeVolume = settings_.Get(Keys::FreeVolume(info.Alias));
    info.FreeVolumeBytes = info.FreeVolume * BytesPerAllowanceUnit;
    info.MonthStartDay = settings_.Get(Keys::MonthStartDay(info.Alias));
    const Date today = DayOf(clock_.Now());
    info.PeriodBegin = korvalin::PeriodBeginOf(today, info.MonthStartDay);
    info.PeriodEnd = korvalin::PeriodEndOf(today, info.MonthStartDay);
    info.DaysInPeriod = static_cast<std::int32_t>(info.PeriodEnd - info.PeriodBegin) + 1;
    info.DaysElapsed = static_cast<std::int32_t>(today - info.PeriodBegin) + 1;
    info.FractionElapsed = RoundToEven(1e4 * info.DaysElapsed / info.DaysInPeriod) / 1e4;
    const bool isCorrected = settings_.Get(Keys::CorrectedFor(info.Alias)) == info.PeriodBegin;
    info.CorrectionBytes =
        isCorrected ? settings_.Get(Keys::CorrectedBy(info.Alias)) * BytesPerAllowanceUnit : 0;
    info.RoundSeconds = settings_.Get(Keys::RoundSeconds(info.Alias));
    info.TrayTime = settings_.Get(Keys::TrayTime(info.Alias));
    info.TrayVol = settings_.Get(Keys::TrayVol(info.Alias));
    info.Up1MB = settings_.Get(Keys::Up1MB(info.Alias));
}

void Aliases::Correct(std::size_t aliasIndex, std::int32_t units) {
    const AliasInfo& info = Alias(aliasIndex);
    if (units == 0) {
        settings_.Remove(Keys::CorrectedBy(info.Alias));
        settings_.Remove(Keys::CorrectedFor(info.Alias));
    } else {
        settings_.Set(Keys::CorrectedBy(info.Alias), units);
        settings_.Set(Keys::CorrectedFor(info.Alias), info.PeriodBegin);
    }
    FillAliasInfo(aliasIndex);
}

void Aliases::FollowDay() {
    const Date today = DayOf(clock_.Now());
    if (day_ == today) return;
    day_ = today;
    for (std::size_t i = 1; i <= aliases_.size(); ++i)
        FillAliasInfo(i);
}

void Aliases::Clear() {
    lines_.clear();
    aliases_.clear();
    lineIndex_.clear();
    aliasIndex_.clear();
    day_ = 0;
}

std::size_t Aliases::AliasIndex(std::string_view alias) const {
    return Find(aliasIndex_, ToLower(alias));
}

Date Aliases::PeriodBeginOf(Date date, std::size_t aliasIndex) const {
    return korvalin::PeriodBeginOf(date, Alias(aliasIndex).MonthStartDay);
}

Date Aliases::PeriodEndOf(Date date, std::size_t aliasIndex) const {
    return korvalin::PeriodEndOf(date, Alias(aliasIndex).MonthStartDay);
}

Date Aliases::RoundDuration(Date duration, std::size_t aliasIndex) const {
    return korvalin::RoundDuration(duration, Alias(aliasIndex).RoundSeconds);
}

double Aliases::RoundVolume(double bytes, std::size_t aliasIndex) const {
    return Alias(aliasIndex).Up1MB ? korvalin::RoundVolume(bytes, units_.VolumeFactor()) : bytes;
}

} // namespace korvalin
