#include "stats/AllowanceEditor.h"

#include "base/Locale.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "forms/Enabling.h"
#include "lang/Language.h"
#include "settings/Settings.h"
#include "stats/Aliases.h"
#include "stats/AllowanceBar.h"
#include "stats/AllowanceWatch.h"
#include "stats/MonthSums.h"
#include "stats/UseTexts.h"

#include <QLabel>
#include <QLineEdit>

namespace korvalin {
namespace {

constexpr double megabyte = 1'000'000; // the allowance's unit, whatever the lists show
constexpr double mostMegabytes = 1'000'000'000;

std::string JoinedPercentages(const std::string& text) {
    std::string joined;
    for (const int percentage : Percentages(text))
        joined += (joined.empty() ? "" : ", ") + std::to_string(percentage);
    return joined;
}

} // namespace

AllowanceEditor::AllowanceEditor(const Controls& controls, const Parts& parts)
    : controls_(controls), parts_(parts) {
    connect(&controls_.txtProvider, &QLineEdit::editingFinished, this,
            &AllowanceEditor::txtProvider_Validate);
    connect(&controls_.txtWarnAt, &QLineEdit::editingFinished, this, &AllowanceEditor::txtWarnAt_Validate);
    ShowAlias({});
}

std::size_t AllowanceEditor::AliasIndex() const {
    return parts_.Aliases.AliasIndex(alias_);
}

void AllowanceEditor::SetUnit(const VolumeUnit& unit) {
    unit_ = unit;
    Renew();
}

void AllowanceEditor::ShowAlias(const std::string& alias) {
    alias_ = alias;
    ShowFields();
    Renew();
}

void AllowanceEditor::ShowFields() {
    const std::size_t index = AliasIndex();
    SetEnabled({&controls_.txtProvider, &controls_.txtWarnAt}, index != 0);
    controls_.txtProvider.clear();
    controls_.txtWarnAt.clear();
    if (index == 0) return;
    const std::string warnAt = parts_.Settings.Get(Keys::WarnAt(alias_));
    const std::string percentages = JoinedPercentages(warnAt);
    controls_.txtWarnAt.setText(QString::fromStdString(percentages.empty() ? "0" : percentages));
    const AliasUse use = parts_.MonthSums.UseOf(index);
    if (use.Correction != 0)
        controls_.txtProvider.setText(
            QString::fromStdString(FormatNumber(use.Volume.Used / megabyte, "0", parts_.Locale)));
}

void AllowanceEditor::Renew() {
    const std::size_t index = AliasIndex();
    AliasUse use;
    if (index != 0) use = parts_.MonthSums.UseOf(index);
    controls_.lblUse.setVisible(index != 0);
    controls_.barUse.setVisible(use.Counted().HasAllowance());
    ShowUse(use);
}

void AllowanceEditor::ShowUse(const AliasUse& use) {
    const auto amount = [&](double value) {
        return use.IsOfHours() ? DurationText(value) : VolumeText(value, unit_, parts_.Locale);
    };
    const std::string end = FormatPattern(use.PeriodEnd, parts_.Locale.ShortDate);
    const QString text = QString::fromStdString(UseText(use.Counted(), end, parts_.Language, amount));
    controls_.lblUse.setText(text);
    controls_.barUse.ShowUse(use.Counted(), use.FractionElapsed);
    controls_.barUse.setAccessibleName(
        QString::fromStdString(parts_.Language.Lng("frmStatistik", 61) + ": " + use.Alias));
    controls_.barUse.setAccessibleDescription(text);
    std::string correction;
    if (use.Correction != 0)
        correction = parts_.Language.Lng("modStats", 66) + ": " + (use.Correction > 0 ? "+" : "") +
                     FormatNumber(use.Correction / megabyte, "#,##0", parts_.Locale) + " MB";
    controls_.lblCorrection.setText(QString::fromStdString(correction));
}

// What is no figure brings back what was shown before.
void AllowanceEditor::txtProvider_Validate() {
    const std::size_t index = AliasIndex();
    if (index == 0 || !controls_.txtProvider.isModified()) return;
    const std::string typed(Trim(controls_.txtProvider.text().toStdString()));
    const auto figure = ReadFormattedNumber(typed, parts_.Locale);
    if (typed.empty() || (figure && *figure >= 0 && *figure <= mostMegabytes))
        parts_.MonthSums.TakeProvidersFigure(index, figure);
    ShowAlias(alias_);
}

void AllowanceEditor::txtWarnAt_Validate() {
    if (AliasIndex() == 0 || !controls_.txtWarnAt.isModified()) return;
    const std::string typed(Trim(controls_.txtWarnAt.text().toStdString()));
    const std::string percentages = JoinedPercentages(typed);
    // The default comes back where nothing stands.
    if (typed.empty() || typed == "0" || !percentages.empty())
        parts_.Settings.Set(Keys::WarnAt(alias_), percentages.empty() ? typed : percentages);
    ShowAlias(alias_);
}

} // namespace korvalin
