#include "stats/TariffEditor.h"

#include "base/FlagGuard.h"
#include "base/Text.h"
#include "forms/Enabling.h"
#include "settings/Settings.h"
#include "stats/Aliases.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>

#include <algorithm>

namespace korvalin {
namespace {

constexpr int mostFreeHours = 30; // in the list; any number may be typed
constexpr int firstShownFreeHours = 10;
constexpr int daysInMonth = 31;

void AddNumbers(QComboBox& list, int last) {
    for (int number = 1; number <= last; ++number)
        list.addItem(QString::number(number));
}

// A value that the list does not offer is shown all the same.
void ShowNumber(QComboBox& list, int number) {
    const QString text = QString::number(number);
    if (list.isEditable()) return list.setEditText(text);
    if (list.findText(text) < 0) list.addItem(text);
    list.setCurrentText(text);
}

} // namespace

TariffEditor::TariffEditor(const Controls& controls, Settings& settings, Aliases& aliases)
    : controls_(controls), settings_(settings), aliases_(aliases) {
    AddNumbers(controls_.cboFreeHours, mostFreeHours);
    controls_.cboFreeHours.setCurrentIndex(firstShownFreeHours - 1);
    AddNumbers(controls_.cboMonthStartDay, daysInMonth);
    for (const int step : {1, 10, 60})
        controls_.cboRoundSeconds.addItem(QString::number(step));
    for (const int volume : {0, 100, 500, 1000, 5000, 10000, 50000, 100000})
        controls_.cboFreeVolume.addItem(QString::number(volume));
    ConnectControls();
}

void TariffEditor::ConnectControls() {
    connect(&controls_.cboLines, &QComboBox::currentIndexChanged, this, [this] { cboLines_Changed(); });
    connect(&controls_.txtAlias, &QLineEdit::editingFinished, this, [this] { txtAlias_Validate(); });
    const auto connectTyped = [this](QComboBox& control, KeyPattern<int> setting) {
        const auto store = [this, &control, setting] { StoreNumber(control, setting); };
        control.setCompleter(nullptr); // it would make 100 of a typed 10
        connect(control.lineEdit(), &QLineEdit::editingFinished, this, store);
        connect(&control, &QComboBox::activated, this, store);
    };
    connectTyped(controls_.cboFreeHours, Keys::FreeHours);
    connectTyped(controls_.cboFreeVolume, Keys::FreeVolume);
    const auto connectList = [this](QComboBox& control, KeyPattern<int> setting) {
        connect(&control, &QComboBox::currentIndexChanged, this,
                [this, &control, setting] { StoreNumber(control, setting); });
    };
    connectList(controls_.cboMonthStartDay, Keys::MonthStartDay);
    connectList(controls_.cboRoundSeconds, Keys::RoundSeconds);
    const auto connectBox = [this](QCheckBox& control, KeyPattern<bool> setting) {
        connect(&control, &QCheckBox::toggled, this,
                [this, &control, setting] { StoreFlag(control, setting); });
    };
    connectBox(controls_.boxUp1MB, Keys::Up1MB);
    connectBox(controls_.boxTrayVolumeLine, Keys::TrayVol);
}

std::string TariffEditor::Line() const {
    return controls_.cboLines.currentText().toStdString();
}

std::string TariffEditor::Alias() const {
    const std::string line = Line();
    return line.empty() ? std::string() : aliases_.GetAlias(line);
}

void TariffEditor::ShowLines(const std::vector<AliasInfo>& lines) {
    {
        const FlagGuard showing(showing_);
        const std::string shown = Line().empty() ? settings_.Get(Keys::Z_StatLineChosen) : Line();
        controls_.cboLines.clear();
        for (const AliasInfo& line : lines)
            controls_.cboLines.addItem(QString::fromStdString(line.LineName));
        const int chosen = controls_.cboLines.findText(QString::fromStdString(shown),
                                                       Qt::MatchFixedString); // in any letter case
        controls_.cboLines.setCurrentIndex(std::max(chosen, controls_.cboLines.count() > 0 ? 0 : -1));
    }
    ShowTariff();
}

void TariffEditor::ShowTariff() {
    const FlagGuard showing(showing_);
    const std::string alias = Alias();
    SetEnabled({&controls_.txtAlias, &controls_.cboFreeHours, &controls_.cboFreeVolume,
                &controls_.cboMonthStartDay, &controls_.cboRoundSeconds, &controls_.boxUp1MB,
                &controls_.boxTrayVolumeLine},
               !alias.empty());
    controls_.txtAlias.setText(QString::fromStdString(alias));
    controls_.txtAlias.setCursorPosition(0);
    emit AliasShown(alias);
    if (alias.empty()) return;
    const AliasInfo& info = aliases_.Alias(aliases_.AliasIndex(alias));
    ShowNumber(controls_.cboFreeHours, info.FreeHours);
    ShowNumber(controls_.cboFreeVolume, info.FreeVolume);
    ShowNumber(controls_.cboMonthStartDay, info.MonthStartDay);
    ShowNumber(controls_.cboRoundSeconds, info.RoundSeconds);
    controls_.boxUp1MB.setChecked(info.Up1MB);
    controls_.boxTrayVolumeLine.setChecked(info.TrayVol);
}

void TariffEditor::cboLines_Changed() {
    if (showing_) return;
    settings_.Set(Keys::Z_StatLineChosen, Line());
    ShowTariff();
}

void TariffEditor::txtAlias_Validate() {
    const std::string line = Line();
    const std::string old = Alias();
    const std::string alias(Trim(controls_.txtAlias.text().toStdString()));
    if (showing_ || line.empty() || alias == old) return;
    if (alias.empty()) return ShowTariff();
    // A line that joins an alias takes part in its tariff; a new alias begins with the old one's.
    if (aliases_.AliasIndex(alias) == 0) InheritTariff(old, alias);
    settings_.Set(Keys::Alias(line), alias);
    emit AliasChanged(old, alias);
    ShowTariff();
}

void TariffEditor::InheritTariff(const std::string& from, const std::string& to) {
    const auto inherit = [&](const auto&... keys) {
        (settings_.Set(keys(to), settings_.Get(keys(from))), ...);
    };
    inherit(Keys::FreeHours, Keys::FreeVolume, Keys::MonthStartDay, Keys::RoundSeconds, Keys::Up1MB,
            Keys::TrayTime, Keys::TrayVol, Keys::WarnAt, Keys::Warned);
    // The provider counts once: an alias that other lines keep keeps its correction, too.
    const auto has = [&](const AliasInfo& line) { return EqualsNoCase(line.Alias, from); };
    const auto& lines = aliases_.Lines();
    if (std::count_if(lines.begin(), lines.end(), has) == 1) inherit(Keys::CorrectedBy, Keys::CorrectedFor);
}

void TariffEditor::StoreNumber(QComboBox& control, KeyPattern<int> setting) {
    const std::string alias = Alias();
    if (showing_ || alias.empty()) return;
    const auto key = setting(alias);
    // What is no number, or none that makes sense, comes back corrected.
    const std::string typed = control.currentText().toStdString();
    const int value = settings_.Validate(key, typed.empty() ? "0" : typed);
    const bool changed = value != settings_.Get(key);
    settings_.Set(key, value);
    aliases_.FillAliasInfo(aliases_.AliasIndex(alias));
    ShowTariff();
    if (changed) emit TariffChanged();
}

void TariffEditor::StoreFlag(QCheckBox& control, KeyPattern<bool> setting) {
    const std::string alias = Alias();
    if (showing_ || alias.empty()) return;
    settings_.Set(setting(alias), control.isChecked());
    aliases_.FillAliasInfo(aliases_.AliasIndex(alias));
    emit TariffChanged();
}

} // namespace korvalin
