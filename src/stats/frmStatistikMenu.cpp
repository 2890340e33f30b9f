// The context menu of the statistics window: what is done with rows.
#include "base/FlagGuard.h"
#include "base/Locale.h"
#include "base/Numbers.h"
#include "base/ProgramTitle.h"
#include "errors/Errors.h"
#include "forms/KeepListView.h"
#include "lang/Language.h"
#include "platform/Clock.h"
#include "platform/MessageBoxes.h"
#include "stats/StatList.h"
#include "stats/frmStatistik.h"
#include "stats/graph/GraphPage.h"
#include "ui_frmStatistik.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QSaveFile>

#include <algorithm>
#include <cerrno>
#include <numeric>
#include <system_error>

namespace korvalin {
namespace {

std::vector<int> AllRows(int count) {
    std::vector<int> rows(static_cast<std::size_t>(count));
    std::iota(rows.begin(), rows.end(), 0);
    return rows;
}

} // namespace

void frmStatistik::OpenContextMenu(StatList& list, const QPoint& at) {
    const bool ofRecords = &list == ui_->ListStats;
    ui_->mnuDelete->setEnabled(ofRecords && list.selectionModel()->hasSelection());
    ui_->mnuSelectMonth->setEnabled(ofRecords);
    ui_->mnuCopy->setEnabled(list.selectionModel()->hasSelection());
    ui_->mnuContext->exec(list.viewport()->mapToGlobal(at));
    ui_->mnuDelete->setEnabled(true); // for the keyboard
    ui_->mnuCopy->setEnabled(true);
}

// Of the list in front, for a job.
ListTexts frmStatistik::Texts(std::vector<int> rows) {
    return List().Texts(std::move(rows), [this](double fraction) { job_.At(fraction); });
}

void frmStatistik::mnuCopy_Click() {
    if (OnGraph() || !List().selectionModel()->hasSelection()) return;
    const ListTexts texts = Texts(SelectedRows(List()));
    QString text;
    if (RunJob([&] { text = QString::fromStdString(CopiedText(texts)); }))
        QGuiApplication::clipboard()->setText(text);
}

void frmStatistik::mnuSelectAll_Click() {
    List().selectAll();
}

void frmStatistik::mnuSelectNone_Click() {
    List().clearSelection();
}

// The calendar month in which the connection of the current row ended; one that is still open ends now.
void frmStatistik::mnuSelectMonth_Click() {
    const Date now = parts_.Clock.Now();
    const auto endOf = [&](int row) {
        const StatRecord& record = ui_->ListStats->Model().Record(row);
        return IsRunning(record) ? now : record.LogOut;
    };
    const QModelIndex current = ui_->ListStats->currentIndex();
    const DateParts day = SplitDate(current.isValid() ? endOf(current.row()) : now);
    const Date first = DateSerial(day.Year, day.Month, 1);
    const Date end = DateSerial(day.Year, day.Month + 1, 1);
    SelectRows(*ui_->ListStats, [&](int row) { return endOf(row) >= first && endOf(row) < end; });
}

bool frmStatistik::UserDeletes(std::size_t count) {
    const auto text = [&](int number) { return parts_.Language.Lng("frmStatistik", number); };
    const std::string question =
        count == 1 ? text(8) : text(9) + " " + std::to_string(count) + " " + text(10);
    return parts_.MessageBoxes.Show(question, std::string(ProgramTitle), MessageIcon::Question,
                                    MessageButtons::YesNoCancel) == MessageAnswer::Yes;
}

void frmStatistik::mnuDelete_Click() {
    if (&List() != ui_->ListStats || OnGraph()) return;
    const std::vector<int> rows = SelectedRows(*ui_->ListStats);
    if (rows.empty()) return;
    {
        const FlagGuard busy(busy_); // the rows are those that the question is about
        if (!UserDeletes(rows.size())) return;
        deletionCancelled_ = false;
        DeleteRows(rows);
    }
    EndProgress();
    ShowCounts();
}

void frmStatistik::DeleteRows(const std::vector<int>& rows) {
    std::vector<std::uint32_t> deleted;
    for (const int row : rows)
        deleted.push_back(ui_->ListStats->Model().RecordOf(row));
    const auto key = [this](int row) { return KeyOfRecord(row); };
    using Keeper = KeepListView<decltype(key)>;
    const Keeper place(*ui_->ListStats, key, Keeper::Top::Stay, rows.front());
    const StatFile::Deletion deletion =
        parts_.StatFile.DeleteRecords(records_, deleted, [this](double fraction) {
            ShowProgress(fraction);
            return !deletionCancelled_ && !cancelled_;
        });
    if (deletion == StatFile::Deletion::Done) {
        ui_->ListStats->Model().SetRows(records_.List, {}); // its rows are numbers of records that have moved
        FindRunning();
        // The same file again, unless something was appended meanwhile.
        std::error_code error;
        const auto bytes = std::filesystem::file_size(parts_.StatFile.StatFilePath(), error);
        if (!error && bytes == records_.ReadTo.Bytes) shown_ = parts_.StatFile.Fingerprint();
        TakeUserChange();
        ShowRecords();
    }
    if (deletion == StatFile::Deletion::Done || deletion == StatFile::Deletion::Cancelled) return;
    int reason = 29;
    if (deletion == StatFile::Deletion::Held) reason = 27;
    if (deletion == StatFile::Deletion::Changed) reason = 28;
    parts_.MessageBoxes.Show(Text(reason) + "\n" + parts_.StatFile.StatFilePath().string(),
                             std::string(ProgramTitle), MessageIcon::Warning, MessageButtons::Ok);
}

// ---- export

std::string frmStatistik::ExportCaption() const {
    std::string range;
    if (!records_.List.empty()) {
        const auto [first, last] = std::minmax_element(
            records_.List.begin(), records_.List.end(),
            [](const auto& left, const auto& right) { return left.LogOut < right.LogOut; });
        range = FormatPattern(first->LogOut, parts_.Locale.ShortDate) + " - " +
                FormatPattern(last->LogOut, parts_.Locale.ShortDate);
    }
    return ui_->cboFilter->currentText().toStdString() + ", " + range + ", " + unit_.Name;
}

// All rows, unless several are selected: a right click selects one only to open the menu.
template <typename Make>
void frmStatistik::Export(const QString& suffix, const Make& make) {
    const QString path =
        chooseFile_(this, QStringLiteral("Korvalin.") + suffix, QStringLiteral("*.") + suffix);
    if (path.isEmpty()) return;
    std::vector<int> rows = SelectedRows(List());
    if (rows.size() < 2) rows = AllRows(List().Model().rowCount());
    const ListTexts texts = OnGraph() ? graph_->Texts() : Texts(std::move(rows));
    const auto write = [&] {
        QSaveFile file(path);
        const std::string content = make(texts);
        const auto size = static_cast<qint64>(content.size());
        errno = 0;
        if (file.open(QIODevice::WriteOnly) && file.write(content.data(), size) == size && file.commit())
            return;
        // A file that may not be written is refused by the toolkit before it asks the system.
        const int cause = errno != 0 ? errno : EACCES;
        throw std::system_error(cause, std::generic_category(), path.toStdString());
    };
    parts_.Errors.Step("Export", [&] {
        if (!RunJob(write)) return;
        const std::string count = FormatNumber(static_cast<double>(texts.RowCount), "#,##0", parts_.Locale);
        ui_->lblRows->setText(QString::fromStdString(Text(44) + " " + count + "   ") + path);
    });
}

void frmStatistik::mnuExportTXT_Click() {
    Export(QStringLiteral("txt"), CopiedText);
}

void frmStatistik::mnuExportHTML_Click() {
    const std::string title = std::string(ProgramTitle) + " - " + windowTitle().toStdString();
    const std::string caption = OnGraph() ? graph_->Title() : ExportCaption();
    const std::string drawing = OnGraph() ? graph_->Svg() : std::string();
    Export(QStringLiteral("html"),
           [&](const ListTexts& list) { return HtmlPage(list, title, caption, drawing); });
}

} // namespace korvalin
