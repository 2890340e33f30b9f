#pragma once

#include "settings/Keys.h"
#include "settingsdlg/SettingsApplier.h"

#include <QObject>

#include <array>
#include <functional>
#include <optional>

class QComboBox;

namespace Ui {
class frmEinstellungen;
}

namespace korvalin {

class CurveFrame;
class Language;

/// The sixteen colours that the system's colour dialog offers besides its own.
using CustomColors = std::array<std::int32_t, 2 * RateSlots>;

/// The dialog's pages about the chart: scale, font, time span, colours, curves and units. Whatever is changed
/// goes into the record that is tried out.
class ChartEditor : public QObject {
    Q_OBJECT

  public:
    /// Asks for a colour; nothing when the user cancels.
    using ChooseColor = std::function<std::optional<std::int32_t>(QWidget& parent, std::int32_t initial,
                                                                  const CustomColors& custom)>;
    struct Parts {
        QWidget& Dialog;
        Ui::frmEinstellungen& Controls;
        korvalin::Settings& Settings;
        korvalin::Language& Language;
        korvalin::UnitFormat& UnitFormat;
        const korvalin::Locale& Locale;
        korvalin::SettingsRecord& SettingsRecord;
    };
    explicit ChartEditor(const Parts& parts);

    void Plug(ChooseColor chooseColor) { chooseColor_ = std::move(chooseColor); }

    /// Fills the lists and shows the record. `historySeconds` is the history's present length.
    void Load(int historySeconds);

    /// Takes over what was typed into a field that has not been left yet.
    void CheckAll();

    /// Shows the time spans as they have been applied.
    void Refresh(int historySeconds);

    /// Names what has no caption of its own; to be called when the texts have changed.
    void ApplyTexts();

  signals:
    /// The preview is to be drawn again.
    void Changed();

  private:
    void LoadFonts();
    void ShowHistoryInForce();
    void LoadCurves();
    void ShowColors();
    void Connect();
    void ConnectScale();
    void ConnectFont();
    void ConnectTime();
    void ConnectCurves(CurveFrame& frame, std::array<bool, RateSlots>& shown,
                       std::array<std::int32_t, RateSlots>& colors, int& choice, SettingKey<int> choiceKey);
    void ConnectUnits();
    int Checked(SettingKey<int> key, const std::string& typed);
    void CheckNumber(QComboBox& combo, SettingKey<int> key, int& value);
    void txtChartMax_Validate();
    void txtChartMinMax_Validate();
    void cboPicWidthMin_Click();
    void cboConnDataMax_Click();
    void lblColorBackground_Click();
    void cmdSwapColors_Click();
    CustomColors StoredColors();
    DisplaySettings& Display() { return parts_.SettingsRecord.Display; }

    Parts parts_;
    Ui::frmEinstellungen& ui_;
    ChooseColor chooseColor_;
    int historySeconds_ = 0;
    int chartMinutes_ = 0; ///< as chosen; the preview shows no more than the history holds
};

} // namespace korvalin
