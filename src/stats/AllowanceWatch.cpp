#include "stats/AllowanceWatch.h"

#include "base/Locale.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "errors/Errors.h"
#include "lang/Language.h"
#include "platform/Clock.h"
#include "platform/Notifier.h"
#include "settings/Settings.h"
#include "stats/Aliases.h"
#include "stats/MonthSums.h"

#include <algorithm>

namespace korvalin {
namespace {

constexpr double secondsBetweenChecks = 60;
constexpr std::string_view volumeMark = "V";
constexpr std::string_view hoursMark = "H";
constexpr std::string_view forecastMark = "F";

std::string PeriodText(const AliasUse& use) {
    return FormatPattern(use.PeriodBegin, "yyyy-mm-dd");
}

} // namespace

std::vector<int> Percentages(const std::string& text) {
    std::vector<int> percentages;
    const std::string blanks = ReplaceAll(ReplaceAll(text, ",", " "), ";", " ");
    for (const std::string_view word : Split(blanks, ' ', blanks.size() + 1)) {
        const auto number = ParseWholeNumber(word);
        if (number && *number > 0) percentages.push_back(*number);
    }
    std::sort(percentages.begin(), percentages.end());
    return percentages;
}

void AllowanceWatch::PassEnded() {
    const double now = parts_.Clock.AwakeSeconds();
    if (notifier_ == nullptr || !parts_.MonthSums.Valid() ||
        (lastCheck_ != 0 && now - lastCheck_ < secondsBetweenChecks))
        return;
    lastCheck_ = now;
    Check();
}

void AllowanceWatch::Check() {
    parts_.Errors.Step("AllowanceWatch", [&] {
        for (std::size_t i = 1; i <= parts_.Aliases.AliasCount(); ++i) {
            parts_.Aliases.FillAliasInfo(i); // another instance may have changed the tariff
            const AliasUse use = parts_.MonthSums.UseOf(i);
            if (use.Volume.HasAllowance() || use.Online.HasAllowance()) Check(use);
        }
    });
}

void AllowanceWatch::Check(const AliasUse& use) {
    Marks told = Told(use);
    const std::size_t before = told.size();
    const std::vector<int> percentages = Percentages(parts_.Settings.Get(Keys::WarnAt(use.Alias)));
    const std::string volume = Due(volumeMark, use.Volume, percentages, told);
    const std::string hours = Due(hoursMark, use.Online, percentages, told);
    if (told.size() == before) return;
    Remember(use, told); // first: a notice that comes twice is worse than one that a crash swallows
    for (const std::string& text : {volume, hours}) {
        if (!text.empty()) notifier_->Notify(use.Alias, text);
    }
}

AllowanceWatch::Marks AllowanceWatch::Told(const AliasUse& use) {
    Marks told;
    const std::string period = PeriodText(use);
    // A store that cannot be written must not make every minute a warning.
    for (const std::string& text : {parts_.Settings.Get(Keys::Warned(use.Alias)), told_[use.Alias]}) {
        if (!text.starts_with(period)) continue;
        for (const std::string_view mark : Split(text, ' ', text.size() + 1))
            if (mark != period) told.emplace(mark);
    }
    return told;
}

void AllowanceWatch::Remember(const AliasUse& use, const Marks& told) {
    std::string text = PeriodText(use);
    for (const std::string& mark : told)
        text += " " + mark;
    parts_.Settings.Set(Keys::Warned(use.Alias), text);
    told_[use.Alias] = text;
}

std::string AllowanceWatch::Due(std::string_view measure, const AllowanceUse& use,
                                const std::vector<int>& percentages, Marks& told) const {
    if (!use.HasAllowance()) return {};
    std::string text;
    Language& language = parts_.Language;
    const auto isNew = [&](std::string_view mark) {
        return told.emplace(std::string(measure).append(mark)).second;
    };
    // What is used up already needs no forecast.
    if (use.Forecast() > use.Allowance && isNew(forecastMark) && use.Used < use.Allowance)
        text = language.Lng("modStats", 10);
    for (const int percentage : percentages) {
        if (use.Percent() < percentage || !isNew(std::to_string(percentage))) continue;
        text = std::to_string(percentage) + " % " + language.Lng("modStats", 9);
    }
    return text;
}

} // namespace korvalin
