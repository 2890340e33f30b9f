#include "settingsdlg/ChartEditor.h"

#include "base/Units.h"
#include "forms/BoundBox.h"
#include "forms/Colors.h"
#include "forms/Combos.h"
#include "forms/Enabling.h"
#include "forms/KeptWhileAsking.h"
#include "forms/SpokenName.h"
#include "lang/Language.h"
#include "lang/UnitFormat.h"
#include "settings/Settings.h"
#include "settingsdlg/ChoiceLists.h"
#include "settingsdlg/TypedValues.h"
#include "ui_frmEinstellungen.h"

#include <QButtonGroup>
#include <QColorDialog>
#include <QFontDatabase>

#include <cmath>

namespace korvalin {
namespace {

std::string Plain(int value) {
    return std::to_string(value);
}

std::optional<std::int32_t> AskForColor(QWidget& parent, std::int32_t initial, const CustomColors& custom) {
    for (std::size_t i = 0; i < custom.size() && i < static_cast<std::size_t>(QColorDialog::customCount());
         ++i) {
        QColorDialog::setCustomColor(static_cast<int>(i), ToColor(custom[i]));
    }
    const QColor chosen = QColorDialog::getColor(ToColor(initial), &parent);
    if (!chosen.isValid()) return std::nullopt;
    return ToColorValue(chosen);
}

} // namespace

ChartEditor::ChartEditor(const Parts& parts) : parts_(parts), ui_(parts.Controls), chooseColor_(AskForColor) {
    ui_.frmDownload->SetUp(QStringLiteral("DL"), {68, 69, 70, 71});
    ui_.frmUpload->SetUp(QStringLiteral("UL"), {117, 116, 115, 114});
    ui_.frmUpload->AddBelow(*ui_.cmdSwapColors);
}

// ---- showing the record

void ChartEditor::Load(int historySeconds) {
    DisplaySettings& display = Display();
    LoadFonts();
    FillCombo(*ui_.cboFontSize, FontSizeChoices(), Plain);
    ShowText(*ui_.cboFontSize, Plain(display.FontSize));
    Bind(*ui_.boxFett, display.FontBold, [this] { emit Changed(); });
    Bind(*ui_.boxShowTimeLines, display.ShowTimeLines, [this] { emit Changed(); });
    EnableWith(*ui_.boxShowTimeLines, {ui_.cboTimeLinesSec});
    FillCombo(*ui_.cboTimeLinesSec, TimeLineChoices(), Plain);
    ShowText(*ui_.cboTimeLinesSec, Plain(display.TimeLinesSec));
    FillCombo(*ui_.cboConnDataMax, MinuteChoices(), Plain);
    FillCombo(*ui_.cboPicWidthMin, MinuteChoices(), Plain);
    Refresh(historySeconds);
    ui_.lblColorBackground->SetColor(display.ChartBackgroundColor);
    Bind(*ui_.boxChartUseMax, display.ChartUseMax, [this] { emit Changed(); });
    EnableWith(*ui_.boxChartUseMax, {ui_.txtChartMax, ui_.lblMaximum});
    ui_.txtChartMax->setText(QString::number(display.ChartMax));
    ui_.txtChartMinMax->setText(QString::number(display.ChartMinMax));
    LoadCurves();
    Connect();
}

void ChartEditor::Refresh(int historySeconds) {
    historySeconds_ = historySeconds;
    chartMinutes_ = Display().picWidthMin;
    ShowText(*ui_.cboConnDataMax, Plain(historySeconds_ / SecondsPerMinute));
    ShowText(*ui_.cboPicWidthMin, Plain(chartMinutes_));
    ShowHistoryInForce();
}

// Why another number of minutes jumps back.
void ChartEditor::ShowHistoryInForce() {
    const std::string minutes = Plain(historySeconds_ / SecondsPerMinute);
    ui_.lblHistoryInForce->setText(QString::fromStdString(parts_.Language.Lng("frmEinstellungen", 35) + " " +
                                                          minutes + " " +
                                                          parts_.Language.Lng("frmEinstellungen", 36)));
}

void ChartEditor::LoadFonts() {
    ui_.cboFontName->addItems(QFontDatabase::families());
    const QString font = QString::fromStdString(Display().FontName);
    // A font that is not installed here stays the chosen one until the user takes another.
    if (ui_.cboFontName->findText(font, Qt::MatchFixedString) < 0) ui_.cboFontName->insertItem(0, font);
    ui_.cboFontName->setCurrentIndex(ui_.cboFontName->findText(font, Qt::MatchFixedString));
}

void ChartEditor::LoadCurves() {
    const DisplaySettings& display = Display();
    for (std::size_t i = 0; i < RateSlots; ++i) {
        ui_.frmDownload->SetShown(i, display.LineDLShow[i]);
        ui_.frmUpload->SetShown(i, display.LineULShow[i]);
    }
    ShowColors();
    ui_.frmDownload->SetChoice(display.DisplayChoiceDL);
    ui_.frmUpload->SetChoice(display.DisplayChoiceUL);
}

void ChartEditor::ShowColors() {
    for (std::size_t i = 0; i < RateSlots; ++i) {
        ui_.frmDownload->SetColor(i, Display().LineDLColor[i]);
        ui_.frmUpload->SetColor(i, Display().LineULColor[i]);
    }
}

void ChartEditor::ApplyTexts() {
    Language& language = parts_.Language;
    const auto toQt = [](const std::string& text) { return QString::fromStdString(text); };
    ui_.frmDownload->NameControls(toQt(language.Lng("frmEinstellungenObj", 69)),
                                  toQt(language.Lng("frmEinstellungenObj", 70)));
    ui_.frmUpload->NameControls(toQt(language.Lng("frmEinstellungenObj", 116)),
                                toQt(language.Lng("frmEinstellungenObj", 115)));
    SpeakAs(*ui_.lblColorBackground, ui_.lblBackground->text());
    SpeakAs(*ui_.cboFontSize, toQt(language.Lng("frmEinstellungenObj", 140)));
    SpeakAs(*ui_.cboTimeLinesSec,
            ui_.boxShowTimeLines->text() + QLatin1Char(' ') + ui_.lblTimeLinesSec->text());
    ShowHistoryInForce();
}

// ---- what the user does

void ChartEditor::Connect() {
    DisplaySettings& display = Display();
    ConnectScale();
    ConnectFont();
    ConnectTime();
    ConnectCurves(*ui_.frmDownload, display.LineDLShow, display.LineDLColor, display.DisplayChoiceDL,
                  Keys::DisplayChoiceDL);
    ConnectCurves(*ui_.frmUpload, display.LineULShow, display.LineULColor, display.DisplayChoiceUL,
                  Keys::DisplayChoiceUL);
    connect(ui_.cmdSwapColors, &QPushButton::clicked, this, &ChartEditor::cmdSwapColors_Click);
    connect(ui_.lblColorBackground, &ColorField::clicked, this, &ChartEditor::lblColorBackground_Click);
    connect(ui_.cmdBackground, &QPushButton::clicked, this, &ChartEditor::lblColorBackground_Click);
    ConnectUnits();
}

void ChartEditor::ConnectScale() {
    connect(ui_.txtChartMax, &QLineEdit::editingFinished, this, &ChartEditor::txtChartMax_Validate);
    connect(ui_.txtChartMinMax, &QLineEdit::editingFinished, this, &ChartEditor::txtChartMinMax_Validate);
}

void ChartEditor::ConnectFont() {
    connect(ui_.cboFontName, &QComboBox::currentTextChanged, this, [this](const QString& name) {
        Display().FontName = name.toStdString();
        emit Changed();
    });
    WhenEntered(*ui_.cboFontSize, *this,
                [this] { CheckNumber(*ui_.cboFontSize, Keys::FontSize, Display().FontSize); });
}

void ChartEditor::ConnectTime() {
    WhenEntered(*ui_.cboTimeLinesSec, *this,
                [this] { CheckNumber(*ui_.cboTimeLinesSec, Keys::TimeLinesSec, Display().TimeLinesSec); });
    WhenEntered(*ui_.cboPicWidthMin, *this, [this] { cboPicWidthMin_Click(); });
    WhenEntered(*ui_.cboConnDataMax, *this, [this] { cboConnDataMax_Click(); });
}

void ChartEditor::ConnectCurves(CurveFrame& frame, std::array<bool, RateSlots>& shown,
                                std::array<std::int32_t, RateSlots>& colors, int& choice,
                                SettingKey<int> choiceKey) {
    connect(&frame, &CurveFrame::ShownChanged, this, [this, &shown](std::size_t curve, bool show) {
        shown.at(curve) = show;
        emit Changed();
    });
    connect(&frame, &CurveFrame::ColorClicked, this, [this, &frame, &colors](std::size_t curve) {
        const KeptWhileAsking kept(parts_.Dialog);
        const auto color = chooseColor_(parts_.Dialog, colors.at(curve), StoredColors());
        if (!color) return;
        colors.at(curve) = *color;
        frame.SetColor(curve, *color);
        emit Changed();
    });
    connect(&frame, &CurveFrame::ChoiceClicked, this, [this, &choice, choiceKey](int chosen) {
        choice = Checked(choiceKey, Plain(chosen)); // 0 becomes the preset one
        emit Changed();
    });
}

void ChartEditor::ConnectUnits() {
    const auto connectOptions = [this](const std::vector<QAbstractButton*>& buttons,
                                       std::vector<std::string> units, bool ofRates, std::string& unit,
                                       std::int32_t& factor) {
        auto* options = new QButtonGroup(this);
        for (QAbstractButton* button : buttons)
            options->addButton(button, static_cast<int>(options->buttons().size()));
        options->button(UnitOptionIndex(unit, ofRates))->setChecked(true);
        connect(options, &QButtonGroup::idClicked, this, [this, units, &unit, &factor](int index) {
            unit = units.at(static_cast<std::size_t>(index));
            factor = parts_.UnitFormat.UnitFactor(unit);
            emit Changed();
        });
    };
    DisplaySettings& display = Display();
    connectOptions({ui_.optKB0, ui_.optKB1, ui_.optKB2, ui_.optKB3}, {"KiB", "KB", "Kbit", "Mbit"}, true,
                   display.RateUnitText, display.KBFactor);
    connectOptions({ui_.optMB0, ui_.optMB1, ui_.optMB2}, {"MiB", "MB", "Mbit"}, false, display.VolumeUnitText,
                   display.MBFactor);
}

// ---- values

int ChartEditor::Checked(SettingKey<int> key, const std::string& typed) {
    return CheckedNumber(parts_.Settings, key, typed, parts_.Locale);
}

void ChartEditor::CheckNumber(QComboBox& combo, SettingKey<int> key, int& value) {
    const int checked = Checked(key, TextOf(combo));
    ShowText(combo, Plain(checked));
    if (checked == value) return;
    value = checked;
    emit Changed();
}

void ChartEditor::txtChartMax_Validate() {
    Display().ChartMax = Checked(Keys::ChartMax, ui_.txtChartMax->text().toStdString());
    ui_.txtChartMax->setText(QString::number(Display().ChartMax));
    emit Changed();
}

void ChartEditor::txtChartMinMax_Validate() {
    Display().ChartMinMax = Checked(Keys::ChartMinMax, ui_.txtChartMinMax->text().toStdString());
    ui_.txtChartMinMax->setText(QString::number(Display().ChartMinMax));
    emit Changed();
}

// The field keeps what was chosen: applied, it makes the history longer.
void ChartEditor::cboPicWidthMin_Click() {
    chartMinutes_ = Checked(Keys::picWidthMin, TextOf(*ui_.cboPicWidthMin));
    ShowText(*ui_.cboPicWidthMin, Plain(chartMinutes_));
    const int historyMinutes = static_cast<int>(std::lround(1.0 * historySeconds_ / SecondsPerMinute));
    Display().picWidthMin = std::min(chartMinutes_, historyMinutes);
    emit Changed();
}

void ChartEditor::cboConnDataMax_Click() {
    const int minutes = CheckedHistoryMinutes(parts_.Settings, TextOf(*ui_.cboConnDataMax), parts_.Locale,
                                              Display().picWidthMin, historySeconds_);
    ShowText(*ui_.cboConnDataMax, Plain(minutes));
    emit Changed();
}

void ChartEditor::CheckAll() {
    CheckNumber(*ui_.cboFontSize, Keys::FontSize, Display().FontSize);
    CheckNumber(*ui_.cboTimeLinesSec, Keys::TimeLinesSec, Display().TimeLinesSec);
    cboPicWidthMin_Click();
    cboConnDataMax_Click();
    txtChartMax_Validate();
    txtChartMinMax_Validate();
}

// ---- colours

CustomColors ChartEditor::StoredColors() {
    CustomColors colors{};
    for (std::size_t i = 0; i < RateSlots; ++i) {
        colors[i] = parts_.Settings.Get(Keys::LineDLColor(i + 1));
        colors[RateSlots + i] = parts_.Settings.Get(Keys::LineULColor(i + 1));
    }
    return colors;
}

void ChartEditor::lblColorBackground_Click() {
    const KeptWhileAsking kept(parts_.Dialog);
    const auto color = chooseColor_(parts_.Dialog, Display().ChartBackgroundColor, StoredColors());
    if (!color) return;
    Display().ChartBackgroundColor = *color;
    ui_.lblColorBackground->SetColor(*color);
    emit Changed();
}

void ChartEditor::cmdSwapColors_Click() {
    std::swap(Display().LineDLColor, Display().LineULColor);
    ShowColors();
    emit Changed();
}

} // namespace korvalin
