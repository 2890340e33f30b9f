#pragma once

#include "settings/Keys.h"

#include <QObject>

#include <string>
#include <vector>

class QCheckBox;
class QComboBox;
class QLineEdit;

namespace korvalin {

class Aliases;
struct AliasInfo;
class Settings;

/// Shows and stores the alias of a line and the alias's tariff. Each value is stored as soon as its control
/// is left or changed.
class TariffEditor : public QObject {
    Q_OBJECT

  public:
    struct Controls {
        QComboBox& cboLines;
        QLineEdit& txtAlias;
        QComboBox& cboFreeHours;
        QComboBox& cboFreeVolume;
        QComboBox& cboMonthStartDay;
        QComboBox& cboRoundSeconds;
        QCheckBox& boxUp1MB;
        QCheckBox& boxTrayVolumeLine;
    };
    TariffEditor(const Controls& controls, Settings& settings, Aliases& aliases);

    /// Lists these lines and shows the tariff of the one that was shown before, or else was chosen last.
    void ShowLines(const std::vector<AliasInfo>& lines);

  signals:
    /// After the alias of the chosen line is shown anew; empty when there is no line.
    void AliasShown(const std::string& alias);
    /// After a change of what sums depend on.
    void TariffChanged();
    /// After the chosen line's change from one alias to another.
    void AliasChanged(const std::string& from, const std::string& to);

  private:
    void ConnectControls();
    void ShowTariff();
    void cboLines_Changed();
    void txtAlias_Validate();
    void StoreNumber(QComboBox& control, KeyPattern<int> setting);
    void StoreFlag(QCheckBox& control, KeyPattern<bool> setting);
    void InheritTariff(const std::string& from, const std::string& to);
    std::string Line() const;
    std::string Alias() const;

    Controls controls_;
    Settings& settings_;
    Aliases& aliases_;
    bool showing_ = false; // what changes is not the user's doing
};

} // namespace korvalin
