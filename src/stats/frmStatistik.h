#pragma once

#include "stats/LongJob.h"
#include "stats/StatCells.h"
#include "stats/StatFile.h"

#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

namespace Ui {
class frmStatistik;
}

namespace korvalin {

class Aliases;
class AllowanceEditor;
class Clock;
class Errors;
class GraphPage;
class Language;
class MessageBoxes;
class MonthSums;
class PeriodSums;
class Recorder;
class Settings;
class StatList;
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

    /// Puts the page of the sums and tariffs in front.
    void ShowSums();

    /// Whether the records are not there yet.
    bool Loading() const { return loading_; }

    /// Fills both lists anew.
    void FillStats();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void SetUpLists();
    void SetUpControls();
    void ConnectControls();
    void ConnectMenu();
    void ConnectKeys();
    void ApplyTexts();
    void RestoreGeometry();
    void SaveGeometry();
    void LoadRecords();
    void ReleaseRecords();
    void ShowLoading(bool loading);
    void ShowProgress(double fraction);
    void EndProgress();
    void Postpone(std::function<void()> work);
    bool RunJob(const std::function<void()>& work);
    void CancelWork();
    bool MayReload() const;
    void FollowFile();
    void FindRunning();
    void FollowRunning(const std::vector<OpenConnection>& open);
    void Reload();
    void TakeRecords(StatRecords fresh, std::size_t known);
    void TariffChanged();
    void TakeUserChange();
    void ShowRecords();
    void ShowTariffLines();
    void AliasChanged(const std::string& from, const std::string& to);
    void FillFilter();
    void FillLists();
    void FillSums();
    void FitColumns(bool mayShrink);
    void WidenForColumns();
    void ShowEmptyNotes();
    void ShowCounts();
    std::string Text(int number) const;
    std::int64_t KeyOfRecord(int row) const;
    std::pair<std::string, double> KeyOfSum(int row) const;
    void optStatSum_Click(int period);
    void cboFilter_Click();
    void cboKBMB_Click();
    void SortByColumn(StatList& list, int column, Qt::SortOrder order);
    void OpenContextMenu(StatList& list, const QPoint& at);
    void mnuCopy_Click();
    void mnuDelete_Click();
    void mnuSelectAll_Click();
    void mnuSelectMonth_Click();
    void mnuSelectNone_Click();
    template <typename Make>
    void Export(const QString& suffix, const Make& make);
    void DeleteRows(const std::vector<int>& rows);
    void mnuExportTXT_Click();
    void mnuExportHTML_Click();
    bool UserDeletes(std::size_t count);
    std::string ExportCaption() const;
    bool OnGraph() const;
    StatList& List() const;
    ListTexts Texts(std::vector<int> rows);

    Parts parts_;
    ChooseFile chooseFile_;
    std::unique_ptr<Ui::frmStatistik> ui_;
    StatRecords records_;
    std::size_t recordsKnown_ = 0; // of this run's, those made before the file was loaded
    StatRecords sums_;
    VolumeUnit unit_;
    std::unique_ptr<TariffEditor> tariff_;
    std::unique_ptr<AllowanceEditor> allowance_;
    GraphPage* graph_ = nullptr; // owned by its tab
    LongJob job_;
    QTimer counts_; // of the line below the lists, when the selection has changed
    std::vector<std::function<void()>> postponed_; // till nothing is at work
    QTimer follow_;                                // looks for new connections while the window is open
    std::vector<std::uint32_t> running_;           // the records of what is open
    std::string shown_;                            // fingerprint of the file that is shown
    Date shownDay_ = 0;                            // the day that the graph takes for today
    std::size_t changes_ = 0;                      // of the records by the user
    bool sumsNeedRecalculation_ = true;
    bool loading_ = false;
    bool busy_ = false; // what is shown must not be exchanged
    bool cancelled_ = false;
    bool deletionCancelled_ = false;
    bool firstOpening_ = false;
};

} // namespace korvalin
