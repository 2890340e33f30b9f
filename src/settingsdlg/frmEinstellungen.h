#pragma once

#include "settingsdlg/ChartEditor.h"
#include "settingsdlg/NetworkPages.h"

#include <QDialog>
#include <QTimer>

#include <memory>

class QTreeWidgetItem;

namespace korvalin {

class ChartPainter;
class Clock;
class LiveTexts;
class MessageBoxes;
class RateHistory;
class SamplingLoop;
struct LineState;

/// The settings dialog. It edits a copy of the live display record, shows on a small chart what comes of it,
/// and writes and applies everything when the user says so.
class frmEinstellungen : public QDialog {
    Q_OBJECT

  public:
    /// What the dialog shows and changes; all of it outlives the dialog.
    struct Parts {
        korvalin::Settings& Settings;
        korvalin::Language& Language;
        korvalin::Errors& Errors;
        korvalin::MessageBoxes& MessageBoxes;
        korvalin::Clock& Clock;
        const korvalin::Locale& Locale;
        const korvalin::LineState& LineState;
        const korvalin::RateHistory& RateHistory;
        korvalin::LiveTexts& LiveTexts;
        korvalin::UnitFormat& UnitFormat;
        korvalin::SamplingLoop& SamplingLoop;
        korvalin::InfoTexts& InfoTexts;           ///< the live record
        korvalin::TrafficOptions& TrafficOptions; ///< of the readers
        korvalin::NetworkTables& NetworkTables;
        korvalin::Internet& Internet;
        korvalin::DataFolder& DataFolder;
        korvalin::AutoStartEntry& AutoStartEntry;
        korvalin::MonitorWindow& MonitorWindow;
    };
    /// Asks for a folder, beginning in `current`; empty when the user gives none.
    using ChooseFolder =
        std::function<QString(QWidget* parent, const QString& caption, const QString& current)>;

    explicit frmEinstellungen(const Parts& parts);
    ~frmEinstellungen() override;

    void Plug(ChooseFolder chooseFolder) { chooseFolder_ = std::move(chooseFolder); }
    void Plug(ChartEditor::ChooseColor chooseColor) { chart_->Plug(std::move(chooseColor)); }

    /// Shows the dialog or brings it to the front.
    void Open();

    /// Shows the page of a node of the tree; the letter case of its key does not matter.
    void TreeAct(const QString& key);

    /// Writes and applies all settings; false when something could not be done and the user was told. Nothing
    /// has changed when the store cannot be written or the data folder must be corrected first.
    bool ApplyChanges();

    void done(int result) override;

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void Form_Load();
    void ApplyTexts();
    void FillTreeView();
    void SizeForPages();
    int RoomForPages() const;
    void LoadSystem();
    void LoadConnection();
    void LoadTransparency();
    void LoadTray();
    void LoadInternet();
    void Connect();
    void ConnectConnection();
    void ConnectTransparency();
    void ConnectTray();
    EnteredSettings Entered() const;
    void CheckAll();
    void DrawPreview();
    void cboLanguage_Click();
    void cboLANactive_Validate();
    void cboTrayMaxRate_Validate();
    void cboTrayMaxVol_Validate();
    void cboOpacity_Change();
    void cboOpacity_Validate();
    bool txtDataPath_Validate();
    bool CheckDataFolder(const std::string& folder);
    void KeepDataPathFocus();
    void cmdChooseDir_Click();
    void Warn(int textNumber);
    std::string Grouped(int value) const;
    QString DialogText(int number) const;

    Parts parts_;
    ChooseFolder chooseFolder_;
    std::unique_ptr<Ui::frmEinstellungen> ui_;
    SettingsRecord record_; ///< tried out here, live once it is applied
    std::unique_ptr<ChartPainter> painter_;
    std::unique_ptr<ChartEditor> chart_;
    std::unique_ptr<NetworkPages> network_;
    SettingsApplier applier_;
    QTimer Timer1_;
    QString unitCaption_; ///< of the unit option that the default mark is put before
    std::string acceptedFolder_;
    bool loaded_ = false;
    bool folderInQuestion_ = false;
};

} // namespace korvalin
