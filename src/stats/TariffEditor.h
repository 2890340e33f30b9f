#pragma once

#include <QObject>

#include <functional>
#include <string>

class QCheckBox;
class QComboBox;
class QLineEdit;

namespace korvalin {

class Aliases;
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
    /// `changed` is called after a change that sums depend on; `aliasChanged` when records have another
    /// alias.
    struct Hooks {
        std::function<void()> Changed;
        std::function<void()> AliasChanged;
    };

    TariffEditor(const Controls& controls, Settings& settings, Aliases& aliases, Hooks hooks);

    /// Lists the known lines and shows the tariff of the one chosen last.
    void FillLines();

  private:
    void ConnectControls();
    void ShowTariff();
    void cboLines_Changed();
    void txtAlias_Validate();
    void StoreNumber(QComboBox& control, const char* suffix);
    void StoreFlag(QCheckBox& control, const char* suffix);
    void InheritTariff(const std::string& from, const std::string& to);
    std::string Line() const;
    std::string Alias() const;

    Controls controls_;
    Settings& settings_;
    Aliases& aliases_;
    Hooks hooks_;
    bool showing_ = false; // what changes is not the user's doing
};

} // namespace korvalin
