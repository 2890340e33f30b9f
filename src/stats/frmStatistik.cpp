#include "stats/frmStatistik.h"

#include "base/Locale.h"
#include "base/Numbers.h"
#include "base/ProgramTitle.h"
#include "base/Text.h"
#include "base/Units.h"
#include "errors/Errors.h"
#include "forms/Enabling.h"
#include "forms/ListPlace.h"
#include "forms/MakeUi.h"
#include "forms/Twips.h"
#include "lang/ApplyFormTexts.h"
#include "lang/Language.h"
#include "platform/Clock.h"
#include "platform/MessageBoxes.h"
#include "settings/Settings.h"
#include "stats/Aliases.h"
#include "stats/MonthSums.h"
#include "stats/PeriodSums.h"
#include "stats/Recorder.h"
#include "stats/StatExport.h"
#include "stats/TariffEditor.h"
#include "stats/graph/GraphPage.h"
#include "ui_frmStatistik.h"

#include <QClipboard>
#include <QCloseEvent>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMenu>
#include <QSaveFile>
#include <QTimer>

namespace korvalin {
namespace {

constexpr int maximised = 2; // of the setting Keys::STATS_State; 0 is normal

QString AskForFile(QWidget* parent, const QString& suggestion, const QString& filter) {
    return QFileDialog::getSaveFileName(parent, QString(), suggestion, filter);
}

std::vector<int> SelectedRows(const QTableView& list) {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : list.selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.push_back(row);
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

std::vector<int> AllRows(int count) {
    std::vector<int> rows(static_cast<std::size_t>(count));
    std::iota(rows.begin(), rows.end(), 0);
    return rows;
}

// Selects exactly the rows that are wanted, run by run.
template <typename Wanted>
void SelectRows(QTableView& list, const Wanted& wanted) {
    QItemSelection selection;
    const QAbstractItemModel& model = *list.model();
    const int rows = model.rowCount();
    const int lastColumn = model.columnCount() - 1;
    for (int first = 0; first < rows; ++first) {
        int end = first;
        while (end < rows && wanted(end))
            ++end;
        if (end > first) selection.append({model.index(first, 0), model.index(end - 1, lastColumn)});
        first = end;
    }
    list.selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

} // namespace

frmStatistik::frmStatistik(const Parts& parts)
    : parts_(parts),
      chooseFile_(AskForFile),
      ui_(MakeUi<Ui::frmStatistik>(*this)),
      recordModel_(RecordColumns(), parts.Language, parts.Locale),
      sumModel_(SumColumns(), parts.Language, parts.Locale) {
    graph_ = new GraphPage({.Settings = parts_.Settings,
                            .Language = parts_.Language,
                            .Errors = parts_.Errors,
                            .Aliases = parts_.Aliases,
                            .MessageBoxes = parts_.MessageBoxes,
                            .Clock = parts_.Clock,
                            .Locale = parts_.Locale},
                           ui_->pageGraph);
    ui_->graphLayout->addWidget(graph_);
    tariff_ = std::make_unique<TariffEditor>(
        TariffEditor::Controls{*ui_->cboLines, *ui_->txtAlias, *ui_->cboFreeHours, *ui_->cboFreeVolume,
                               *ui_->cboMonthStartDay, *ui_->cboRoundSeconds, *ui_->boxUp1MB,
                               *ui_->boxTrayVolumeLine},
        parts_.Settings, parts_.Aliases);
    connect(tariff_.get(), &TariffEditor::Changed, this, &frmStatistik::RecordsChanged);
    SetUpControls();
    ApplyTexts();
    SetUpLists();
    ConnectControls();
    ConnectMenu();
}

frmStatistik::~frmStatistik() = default;

void frmStatistik::SetUpControls() {
    for (const Unit& unit : Units)
        ui_->cboKBMB->addItem(QString::fromUtf8(unit.Name.data(), static_cast<qsizetype>(unit.Name.size())));
    std::string unit = parts_.Settings.Get(Keys::Stat_Dimension);
    if (!FindUnitFactor(unit)) unit = parts_.Settings.Get(Keys::UnitMB);
    ui_->cboKBMB->setCurrentText(QString::fromStdString(unit));
    const int period =
        std::clamp(ParseWholeNumber(parts_.Settings.Get(Keys::z_optStatSum)).value_or(0), 0, 2);
    ui_->optStatSum->setId(ui_->optStatSum0, 0);
    ui_->optStatSum->setId(ui_->optStatSum1, 1);
    ui_->optStatSum->setId(ui_->optStatSum2, 2);
    ui_->optStatSum->button(period)->setChecked(true);
    cboKBMB_Click();
}

void frmStatistik::SetUpLists() {
    SetUpList(*ui_->ListStats, recordModel_, false);
    SetUpList(*ui_->ListStatsSum, sumModel_, true);
    ui_->ListStats->setColumnHidden(recordModel_.columnCount() - 1, true);
}

void frmStatistik::SetUpList(QTableView& list, StatTableModel& model, bool ofSums) {
    list.setModel(&model);
    list.setStyle(&listStyle_);
    list.horizontalHeader()->setStyle(&listStyle_);
    const QFontMetrics metrics = list.fontMetrics();
    list.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    list.verticalHeader()->setDefaultSectionSize(metrics.height() + 6);
    QHeaderView& header = *list.horizontalHeader();
    header.setSectionsClickable(true);
    header.setStretchLastSection(!ofSums); // a note may be long, a figure would only be far away
    for (int column = 0; column < model.columnCount(); ++column) {
        const auto field = model.Columns()[static_cast<std::size_t>(column)].Shows;
        const QString sample =
            QStringLiteral("----") + QString::fromStdString(SampleText(field, ofSums, parts_.Locale));
        header.resizeSection(column,
                             std::max(metrics.horizontalAdvance(sample), header.sectionSizeHint(column)));
    }
    header.setSortIndicator(-1, Qt::AscendingOrder); // the records' own order
    header.setSortIndicatorShown(true);
    connect(&header, &QHeaderView::sortIndicatorChanged, this,
            [this, &list](int column, Qt::SortOrder order) { SortByColumn(list, column, order); });
}

void frmStatistik::ConnectControls() {
    connect(ui_->optStatSum, &QButtonGroup::idClicked, this, [this](int id) { optStatSum_Click(id); });
    connect(ui_->cboFilter, &QComboBox::activated, this, [this] { cboFilter_Click(); });
    connect(ui_->cboKBMB, &QComboBox::activated, this, [this] {
        parts_.Settings.Set(Keys::Stat_Dimension, ui_->cboKBMB->currentText().toStdString());
        cboKBMB_Click();
    });
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QWidget::close);
    for (QTableView* list : {ui_->ListStats, ui_->ListStatsSum}) {
        connect(list, &QWidget::customContextMenuRequested, this,
                [this, list](const QPoint& at) { OpenContextMenu(*list, at); });
    }
}

void frmStatistik::ConnectMenu() {
    const auto connectItem = [this](QAction* item, void (frmStatistik::*click)()) {
        item->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        for (QTableView* list : {ui_->ListStats, ui_->ListStatsSum})
            list->addAction(item); // its shortcut works where the list has the focus
        connect(item, &QAction::triggered, this, click);
    };
    connectItem(ui_->mnuCopy, &frmStatistik::mnuCopy_Click);
    connectItem(ui_->mnuDelete, &frmStatistik::mnuDelete_Click);
    connectItem(ui_->mnuSelectAll, &frmStatistik::mnuSelectAll_Click);
    connectItem(ui_->mnuSelectMonth, &frmStatistik::mnuSelectMonth_Click);
    connectItem(ui_->mnuSelectNone, &frmStatistik::mnuSelectNone_Click);
    connectItem(ui_->mnuExportTXT, &frmStatistik::mnuExportTXT_Click);
    connectItem(ui_->mnuExportHTML, &frmStatistik::mnuExportHTML_Click);
    graph_->setContextMenuPolicy(Qt::ActionsContextMenu);
    graph_->addAction(ui_->mnuExportHTML);
}

void frmStatistik::ApplyTexts() {
    ApplyFormTexts(*this, parts_.Language);
    const auto text = [&](const char* section, int number) {
        return QString::fromStdString(parts_.Language.Lng(section, number));
    };
    ui_->SSTab->setTabText(0, text("frmStatistik", 25));
    ui_->SSTab->setTabText(1, text("frmStatistik", 26));
    ui_->SSTab->setTabText(2, text("frmMainObj", 7));
    const auto nameAsTab = [this](QTableView* list, int tab) {
        list->setAccessibleName(ui_->SSTab->tabText(tab).remove(QLatin1Char('&')));
    };
    nameAsTab(ui_->ListStats, 0);
    nameAsTab(ui_->ListStatsSum, 2);
    ui_->prgLoading->setFormat(text("frmStatistikObj", 37));
    for (StatTableModel* model : {&recordModel_, &sumModel_})
        emit model->headerDataChanged(Qt::Horizontal, 0, model->columnCount() - 1);
}

void frmStatistik::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::LanguageChange) return;
    ApplyTexts();
    FillFilter();
}

// ---- opening and closing

void frmStatistik::Open() {
    const bool wasOpen = isVisible();
    if (!wasOpen) RestoreGeometry();
    show();
    setWindowState(windowState() & ~Qt::WindowMinimized);
    raise();
    activateWindow();
    cancelled_ = false; // a load that the close box has just cancelled goes on
    if (wasOpen || loading_) return;
    loading_ = true;
    QTimer::singleShot(0, this, [this] { LoadRecords(); });
}

void frmStatistik::RestoreGeometry() {
    const auto pixels = [&](SettingKey<int> key) { return TwipsToPixels(parts_.Settings.Get(key)); };
    const QRect place(pixels(Keys::STATS_Left), pixels(Keys::STATS_Top), pixels(Keys::STATS_Width),
                      pixels(Keys::STATS_Height));
    resize(place.size());
    // The screen it lay on may be gone.
    if (QGuiApplication::screenAt(place.center()) != nullptr) move(place.topLeft());
    if (parts_.Settings.Get(Keys::STATS_State) == maximised) setWindowState(Qt::WindowMaximized);
}

void frmStatistik::SaveGeometry() {
    const QRect inner = isMaximized() ? normalGeometry() : geometry();
    const QPoint corner = isMaximized() ? inner.topLeft() : pos();
    const auto store = [&](SettingKey<int> key, int value) {
        parts_.Settings.Set(key, PixelsToTwips(value));
    };
    store(Keys::STATS_Left, corner.x());
    store(Keys::STATS_Top, corner.y());
    store(Keys::STATS_Width, inner.width());
    store(Keys::STATS_Height, inner.height());
    parts_.Settings.Set(Keys::STATS_State, isMaximized() ? maximised : 0);
}

void frmStatistik::closeEvent(QCloseEvent* event) {
    SaveGeometry();
    event->accept();
    // What is being typed is stored while the records are still there for the sums that follow from it.
    if (QWidget* edited = focusWidget()) edited->clearFocus();
    cancelled_ = true;
    // While they are loaded the records are in use.
    if (!loading_) ReleaseRecords();
}

// Nothing of a million records is needed while the window is closed.
void frmStatistik::ReleaseRecords() {
    recordModel_.SetRows(records_.List, {});
    sumModel_.SetRows(sums_.List, {});
    records_ = StatRecords();
    sums_ = StatRecords();
    graph_->ShowRecords(records_);
}

void frmStatistik::LoadRecords() {
    ShowLoading(true);
    ReleaseRecords();
    recordsKnown_ = parts_.Recorder.RecordsInFile();
    parts_.StatFile.LoadStatFile(records_, false, [this](double fraction) {
        ui_->prgLoading->setValue(static_cast<int>(fraction * ui_->prgLoading->maximum()));
        return !cancelled_;
    });
    loading_ = false;
    // A part of the records must never be taken for all of them.
    if (cancelled_) return ReleaseRecords();
    ShowLoading(false);
    sumsNeedRecalculation_ = true;
    tariff_->ShowLines(records_.List.empty() ? std::vector<AliasInfo>() : parts_.Aliases.Lines());
    FillFilter();
    FillStats();
    graph_->ShowRecords(records_);
    if (OnGraph())
        ui_->SSTab->setFocus();
    else
        List().setFocus();
}

void frmStatistik::ShowLoading(bool loading) {
    ui_->prgLoading->setValue(0);
    ui_->prgLoading->setVisible(loading);
    ui_->cmdCancel->setVisible(loading);
    SetEnabled({ui_->SSTab, ui_->cboFilter, ui_->cboKBMB}, !loading);
}

// ---- filling

void frmStatistik::FillFilter() {
    const QString stored = QString::fromStdString(parts_.Settings.Get(Keys::Z_StatFilter));
    ui_->cboFilter->clear();
    ui_->cboFilter->addItem(QString::fromStdString(parts_.Language.Lng("frmStatistikObj", 36)), QString());
    for (std::size_t i = 1; i <= parts_.Aliases.AliasCount(); ++i) {
        const QString alias = QString::fromStdString(parts_.Aliases.Alias(i).Alias);
        ui_->cboFilter->addItem(alias, alias);
    }
    const int index = ui_->cboFilter->findData(stored, Qt::UserRole, Qt::MatchFixedString);
    ui_->cboFilter->setCurrentIndex(std::max(stored.isEmpty() ? 0 : index, 0));
}

std::pair<std::string, double> frmStatistik::KeyOfRecord(int row) const {
    return {std::string(), static_cast<double>(recordModel_.Record(row).FileIndex)};
}

void frmStatistik::FillStats() {
    parts_.Errors.Step("FillStats", [&] {
        const std::string filter = ui_->cboFilter->currentData().toString().toStdString();
        const KeepListPlace recordPlace(*ui_->ListStats, [this](int row) { return KeyOfRecord(row); });
        const KeepListPlace sumPlace(*ui_->ListStatsSum, [this](int row) {
            return std::pair(std::string(sumModel_.Record(row).Alias), sumModel_.Record(row).StatPeriodBegin);
        });
        recordModel_.SetRows(records_.List, FilterRows(records_.List, filter));
        if (sumsNeedRecalculation_) {
            sumModel_.SetRows(sums_.List, {});
            parts_.PeriodSums.CalcStatSums(records_, static_cast<SumPeriod>(ui_->optStatSum->checkedId()),
                                           sums_);
            sumsNeedRecalculation_ = false;
        }
        sumModel_.SetRows(sums_.List, FilterRows(sums_.List, filter));
    });
}

// Tariffs, aliases or the records themselves have changed: everything made of them follows.
void frmStatistik::RecordsChanged() {
    parts_.MonthSums.CalcStatsThisMonth(records_, recordsKnown_);
    FillFilter();
    if (!records_.List.empty()) tariff_->ShowLines(parts_.Aliases.Lines());
    sumsNeedRecalculation_ = true;
    FillStats();
    graph_->ShowRecords(records_);
}

void frmStatistik::optStatSum_Click(int period) {
    parts_.Settings.Set(Keys::z_optStatSum, std::to_string(period));
    sumsNeedRecalculation_ = true;
    FillStats();
}

void frmStatistik::cboFilter_Click() {
    parts_.Settings.Set(Keys::Z_StatFilter, ui_->cboFilter->currentData().toString().toStdString());
    FillStats();
}

void frmStatistik::cboKBMB_Click() {
    unit_.Name = ui_->cboKBMB->currentText().toStdString();
    unit_.Bytes = FindUnitFactor(unit_.Name).value_or(1000);
    recordModel_.SetUnit(unit_);
    sumModel_.SetUnit(unit_);
    graph_->SetUnit(unit_.Name, unit_.Bytes);
}

void frmStatistik::SortByColumn(QTableView& list, int column, Qt::SortOrder order) {
    StatTableModel& model = ModelOf(list);
    const KeepListPlace place(list,
                              [&](int row) { return std::pair(std::string(), double(model.RecordOf(row))); });
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    model.sort(column, order);
    QGuiApplication::restoreOverrideCursor();
}

// ---- the context menu

StatTableModel& frmStatistik::ModelOf(const QTableView& list) {
    return &list == ui_->ListStats ? recordModel_ : sumModel_;
}

// The list that the menu is about: that of the page in front.
QTableView& frmStatistik::List() const {
    return ui_->SSTab->currentWidget() == ui_->pageSums ? *ui_->ListStatsSum : *ui_->ListStats;
}

bool frmStatistik::OnGraph() const {
    return ui_->SSTab->currentWidget() == ui_->pageGraph;
}

void frmStatistik::OpenContextMenu(QTableView& list, const QPoint& at) {
    const bool ofRecords = &list == ui_->ListStats;
    ui_->mnuDelete->setEnabled(ofRecords && list.selectionModel()->hasSelection());
    ui_->mnuSelectMonth->setEnabled(ofRecords);
    ui_->mnuCopy->setEnabled(list.selectionModel()->hasSelection());
    ui_->mnuContext->exec(list.viewport()->mapToGlobal(at));
    ui_->mnuDelete->setEnabled(true); // for the keyboard
    ui_->mnuCopy->setEnabled(true);
}

ListTexts frmStatistik::TextsOf(const QTableView& list, std::vector<int> rows) {
    const StatTableModel& model = ModelOf(list);
    ListTexts texts;
    for (int column = 0; column < model.columnCount(); ++column) {
        const auto field = model.Columns()[static_cast<std::size_t>(column)].Shows;
        if (field == StatColumn::Field::FileIndex) continue; // the last one
        texts.Headers.push_back(model.Header(column));
        texts.IsFigure.push_back(IsFigure(field));
    }
    texts.RowCount = rows.size();
    texts.UnitName = unit_.Name;
    texts.Cell = [&model, rows = std::move(rows)](std::size_t row, std::size_t column) {
        return model.Text(rows[row], static_cast<int>(column));
    };
    return texts;
}

void frmStatistik::mnuCopy_Click() {
    const QTableView& list = List();
    const std::string text = CopiedText(TextsOf(list, SelectedRows(list)));
    QGuiApplication::clipboard()->setText(QString::fromStdString(text));
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
        const StatRecord& record = recordModel_.Record(row);
        return EqualsNoCase(record.Info, InfoRunning) ? now : record.LogOut;
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
    if (&List() != ui_->ListStats) return;
    const std::vector<int> rows = SelectedRows(*ui_->ListStats);
    if (rows.empty() || !UserDeletes(rows.size())) return;
    std::vector<std::uint32_t> deleted;
    for (const int row : rows)
        deleted.push_back(recordModel_.RecordOf(row));
    const KeepListPlace place(
        *ui_->ListStats, [this](int row) { return KeyOfRecord(row); }, rows.front());
    const StatFile::Deletion deletion = parts_.StatFile.DeleteRecords(records_, deleted);
    if (deletion == StatFile::Deletion::Done) {
        recordModel_.SetRows(records_.List, {}); // its rows are numbers of records that have moved
        return RecordsChanged();
    }
    const int reason = deletion == StatFile::Deletion::Held      ? 27
                       : deletion == StatFile::Deletion::Changed ? 28
                                                                 : 29;
    parts_.Errors.DisplayError("mnuDelete", 0,
                               parts_.Language.Lng("frmStatistik", reason) + "\n" +
                                   parts_.StatFile.StatFilePath().string());
}

// ---- export

std::string frmStatistik::ExportCaption(const ListTexts& list) const {
    std::string range;
    if (!records_.List.empty()) {
        const auto [first, last] = std::minmax_element(
            records_.List.begin(), records_.List.end(),
            [](const auto& left, const auto& right) { return left.LogOut < right.LogOut; });
        range = FormatPattern(first->LogOut, parts_.Locale.ShortDate) + " - " +
                FormatPattern(last->LogOut, parts_.Locale.ShortDate);
    }
    return ui_->cboFilter->currentText().toStdString() + ", " + range + ", " + list.UnitName;
}

template <typename Make>
void frmStatistik::Export(const QString& suffix, const Make& make) {
    const QString path =
        chooseFile_(this, QStringLiteral("Korvalin.") + suffix, QStringLiteral("*.") + suffix);
    if (path.isEmpty()) return;
    QTableView& list = List();
    std::vector<int> rows = SelectedRows(list);
    if (rows.empty()) rows = AllRows(ModelOf(list).rowCount());
    parts_.Errors.Step("Export", [&] {
        QSaveFile file(path);
        const std::string content = make(TextsOf(list, std::move(rows)));
        const auto size = static_cast<qint64>(content.size());
        if (!file.open(QIODevice::WriteOnly) || file.write(content.data(), size) != size || !file.commit())
            throw NumberedError(0, path.toStdString() + ": " + file.errorString().toStdString());
    });
}

void frmStatistik::mnuExportTXT_Click() {
    Export(QStringLiteral("txt"), CopiedText);
}

void frmStatistik::mnuExportHTML_Click() {
    Export(QStringLiteral("html"), [this](const ListTexts& list) {
        const std::string title = std::string(ProgramTitle) + " - " + windowTitle().toStdString();
        return HtmlPage(list, title, ExportCaption(list), OnGraph() ? graph_->Svg() : std::string());
    });
}

} // namespace korvalin
