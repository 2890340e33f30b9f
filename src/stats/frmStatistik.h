#pragma once

#include "forms/Styles.h"
#include "stats/StatFile.h"
#include "stats/StatTableModel.h"

#include <QWidget>

#include <functional>
#include <memory>

class QTableView;

namespace Ui {
class frmStatistik;
}

namespace korvalin {

class Aliases;
class Clock;
class Errors;
class GraphPage;
class Language;
class MessageBoxes;
class MonthSums;
class PeriodSums;
class Recorder;
class Settings;
class TariffEditor;
struct ListTexts;

/// The window of recorded connections, their sums, tariffs and graph.
class frmStatistik : public QWidget {
    Q_OBJECT

  public:
    /// What the window shows and changes; all of it outlives the window.
    struct Parts {
        korvalin::Settings& Settings;
        korvalin::Language& Language;
        korvalin::Errors& Errors;
        korvalin::MessageBoxes& MessageBoxes;
        korvalin::StatFile& StatFile;
        korvalin::Aliases& Aliases;
        korvalin::MonthSums& MonthSums;
        korvalin::PeriodSums& PeriodSums;
        korvalin::Clock& Clock;
        const korvalin::Locale& Locale;
        const korvalin::Recorder& Recorder;
    };
    /// Asks for the name of a file to save under; empty when the user gives none.
    using ChooseFile =
        std::function<QString(QWidget* parent, const QString& suggestion, const QString& filter)>;

    explicit frmStatistik(const Parts& parts);
    ~frmStatistik() override;

    void Plug(ChooseFile chooseFile) { chooseFile_ = std::move(chooseFile); }

    /// Shows the window where it was left, or brings it to the front, and loads the records.
    void Open();

    /// Whether the records are not there yet.
    bool Loading() const { return loading_; }

    /// Fills both lists anew.
    void FillStats();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void SetUpLists();
    void SetUpList(QTableView& list, StatTableModel& model, bool ofSums);
    void SetUpControls();
    void ConnectControls();
    void ConnectMenu();
    void ApplyTexts();
    void RestoreGeometry();
    void SaveGeometry();
    void LoadRecords();
    void ReleaseRecords();
    void ShowLoading(bool loading);
    void RecordsChanged();
    void FillFilter();
    std::pair<std::string, double> KeyOfRecord(int row) const;
    void optStatSum_Click(int period);
    void cboFilter_Click();
    void cboKBMB_Click();
    void SortByColumn(QTableView& list, int column, Qt::SortOrder order);
    void OpenContextMenu(QTableView& list, const QPoint& at);
    void mnuCopy_Click();
    void mnuDelete_Click();
    void mnuSelectAll_Click();
    void mnuSelectMonth_Click();
    void mnuSelectNone_Click();
    template <typename Make>
    void Export(const QString& suffix, const Make& make);
    void mnuExportTXT_Click();
    void mnuExportHTML_Click();
    bool UserDeletes(std::size_t count);
    std::string ExportCaption(const ListTexts& list) const;
    bool OnGraph() const;
    QTableView& List() const;
    StatTableModel& ModelOf(const QTableView& list);
    ListTexts TextsOf(const QTableView& list, std::vector<int> rows);

    Parts parts_;
    ChooseFile chooseFile_;
    std::unique_ptr<Ui::frmStatistik> ui_;
    RoomyStyle listStyle_;
    StatRecords records_;
    std::size_t recordsKnown_ = 0; // of this run's, those made before the file was loaded
    StatRecords sums_;
    VolumeUnit unit_;
    StatTableModel recordModel_;
    StatTableModel sumModel_;
    std::unique_ptr<TariffEditor> tariff_;
    GraphPage* graph_ = nullptr; // owned by its tab
    bool sumsNeedRecalculation_ = true;
    bool loading_ = false;
    bool cancelled_ = false;
};

} // namespace korvalin
