#include "stats/frmStatistik.h"

#include "base/FlagGuard.h"
#include "base/Locale.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "base/Units.h"
#include "errors/Errors.h"
#include "forms/Enabling.h"
#include "forms/FocusedWheel.h"
#include "forms/KeepListView.h"
#include "forms/MakeUi.h"
#include "forms/Twips.h"
#include "lang/ApplyFormTexts.h"
#include "lang/Language.h"
#include "platform/Clock.h"
#include "settings/Settings.h"
#include "stats/Aliases.h"
#include "stats/AllowanceEditor.h"
#include "stats/MonthSums.h"
#include "stats/PeriodSums.h"
#include "stats/Recorder.h"
#include "stats/StatList.h"
#include "stats/TariffEditor.h"
#include "stats/graph/GraphPage.h"
#include "ui_frmStatistik.h"

#include <QCloseEvent>
#include <QFileDialog>
#include <QGuiApplication>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>

namespace korvalin {
namespace {

constexpr int followMilliseconds = 1000;
constexpr int maximised = 2; // of the setting Keys::STATS_State; 0 is normal

QString AskForFile(QWidget* parent, const QString& suggestion, const QString& filter) {
    return QFileDialog::getSaveFileName(parent, QString(), suggestion, filter);
}

} // namespace

frmStatistik::frmStatistik(const Parts& parts)
    : parts_(parts), chooseFile_(AskForFile), ui_(MakeUi<Ui::frmStatistik>(*this)) {
    SetUpLists();
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
    allowance_ = std::make_unique<AllowanceEditor>(
        AllowanceEditor::Controls{*ui_->barUse, *ui_->lblUse, *ui_->lblCorrection, *ui_->txtProvider,
                                  *ui_->txtWarnAt},
        AllowanceEditor::Parts{parts_.Settings, parts_.Language, parts_.Aliases, parts_.MonthSums,
                               parts_.Locale});
    connect(tariff_.get(), &TariffEditor::AliasShown, allowance_.get(), &AllowanceEditor::ShowAlias);
    connect(tariff_.get(), &TariffEditor::TariffChanged, this, &frmStatistik::TariffChanged);
    connect(tariff_.get(), &TariffEditor::AliasChanged, this, &frmStatistik::AliasChanged);
    SetUpControls();
    ApplyTexts();
    FitColumns(true);
    ConnectControls();
    ConnectMenu();
    ConnectKeys();
    new FocusedWheel(*this); // owned by the window
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
    StatTableModel::Order stored;
    stored.Column = parts_.Settings.Get(Keys::STATS_SortColumn);
    if (parts_.Settings.Get(Keys::STATS_SortDown)) stored.Direction = Qt::DescendingOrder;
    ui_->ListStats->SetUp(StatList::Of::Records, parts_.Language, parts_.Locale, stored);
    ui_->ListStats->setColumnHidden(ui_->ListStats->Model().columnCount() - 1, true);
    ui_->ListStatsSum->SetUp(StatList::Of::Sums, parts_.Language, parts_.Locale, {});
}

// ---- columns

void frmStatistik::FitColumns(bool mayShrink) {
    ui_->ListStats->FitColumns(records_.List, mayShrink);
    ui_->ListStatsSum->FitColumns(sums_.List, mayShrink);
}

// At the first opening nobody has chosen a width yet.
void frmStatistik::WidenForColumns() {
    if (!std::exchange(firstOpening_, false) || isMaximized()) return;
    const StatList& list = *ui_->ListStats;
    const QRect free = screen()->availableGeometry();
    const int frame = frameGeometry().width() - width();
    // Rows that are still to come may bring the scroll bar.
    const int bar =
        list.verticalScrollBar()->isVisible() ? 0 : style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    const int missing = std::max(list.WidthOfColumns() + bar - list.viewport()->width(), 0);
    resize(std::min(width() + missing, free.width() - frame), height());
    if (frameGeometry().right() > free.right()) move(free.right() + 1 - width() - frame, y());
}

void frmStatistik::ConnectControls() {
    connect(ui_->optStatSum, &QButtonGroup::idClicked, this, [this](int id) { optStatSum_Click(id); });
    connect(ui_->cboFilter, &QComboBox::activated, this, [this] { cboFilter_Click(); });
    connect(ui_->cboKBMB, &QComboBox::activated, this, [this] {
        parts_.Settings.Set(Keys::Stat_Dimension, ui_->cboKBMB->currentText().toStdString());
        cboKBMB_Click();
        FitColumns(true);
        ShowCounts();
    });
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &frmStatistik::CancelWork);
    connect(&job_, &LongJob::Progress, this, &frmStatistik::ShowProgress);
    connect(ui_->SSTab, &QTabWidget::currentChanged, this, [this] { ShowCounts(); });
    connect(&follow_, &QTimer::timeout, this, &frmStatistik::FollowFile);
    counts_.setSingleShot(true); // once for all that changes in a turn
    connect(&counts_, &QTimer::timeout, this, &frmStatistik::ShowCounts);
    for (StatList* list : {ui_->ListStats, ui_->ListStatsSum}) {
        connect(list, &QWidget::customContextMenuRequested, this,
                [this, list](const QPoint& at) { OpenContextMenu(*list, at); });
        connect(list, &StatList::SelectionChanged, this, [this] { counts_.start(); });
        connect(list, &StatList::OrderWanted, this,
                [this, list](int column, Qt::SortOrder order) { SortByColumn(*list, column, order); });
    }
}

void frmStatistik::ConnectMenu() {
    const auto connectItem = [this](QAction* item, void (frmStatistik::*click)()) {
        item->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        for (StatList* list : {ui_->ListStats, ui_->ListStatsSum})
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
    graph_->addAction(ui_->mnuExportTXT);
    graph_->addAction(ui_->mnuExportHTML);
}

void frmStatistik::ConnectKeys() {
    const auto onKey = [this](const QKeySequence& key, const auto& act) {
        connect(new QShortcut(key, this), &QShortcut::activated, this, act);
    };
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_W})
        onKey(key == Qt::Key_W ? QKeySequence(Qt::CTRL | key) : QKeySequence(key), [this] {
            if (busy_) return CancelWork();
            close();
        });
    connect(ui_->mnuReload, &QAction::triggered, this, [this] {
        if (MayReload()) Reload();
    });
    addAction(ui_->mnuReload); // its key works in the whole window
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
    ui_->SSTab->setTabToolTip(2, text("frmStatistik", 47));
    for (StatList* list : {ui_->ListStats, ui_->ListStatsSum})
        emit list->Model().headerDataChanged(Qt::Horizontal, 0, list->Model().columnCount() - 1);
}

void frmStatistik::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::LanguageChange) return;
    ApplyTexts();
    FillFilter();
    FitColumns(false);
    ShowEmptyNotes();
    ShowCounts();
    allowance_->Renew();
}

std::string frmStatistik::Text(int number) const {
    return parts_.Language.Lng("frmStatistik", number);
}

// ---- opening and closing

void frmStatistik::Open() {
    const bool wasOpen = isVisible();
    if (!wasOpen) {
        RestoreGeometry();
        graph_->LoadSettings();
    }
    show();
    setWindowState(windowState() & ~Qt::WindowMinimized);
    raise();
    activateWindow();
    cancelled_ = false; // what the close box has just cancelled goes on
    follow_.start(followMilliseconds);
    if (wasOpen || loading_ || busy_) return;
    loading_ = true; // another opening before the turn comes must not load too
    QTimer::singleShot(0, this, [this] { LoadRecords(); });
}

void frmStatistik::ShowSums() {
    ui_->SSTab->setCurrentWidget(ui_->pageSums);
}

void frmStatistik::RestoreGeometry() {
    const auto pixels = [&](SettingKey<int> key) { return TwipsToPixels(parts_.Settings.Get(key)); };
    const QRect place(pixels(Keys::STATS_Left), pixels(Keys::STATS_Top), pixels(Keys::STATS_Width),
                      pixels(Keys::STATS_Height));
    firstOpening_ = std::to_string(parts_.Settings.Get(Keys::STATS_Width)) ==
                    parts_.Settings.DefaultText(Keys::STATS_Width.Name);
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
    follow_.stop();
    job_.Cancel();
    // While they are loaded or worked on the records are in use.
    if (!loading_ && !busy_) ReleaseRecords();
}

// Nothing of a million records is needed while the window is closed.
void frmStatistik::ReleaseRecords() {
    ui_->ListStats->Model().SetRows(records_.List, {});
    ui_->ListStatsSum->Model().SetRows(sums_.List, {});
    records_ = StatRecords();
    sums_ = StatRecords();
    running_.clear();
    graph_->ShowRecords(records_);
}

void frmStatistik::LoadRecords() {
    ShowLoading(true);
    ReleaseRecords();
    recordsKnown_ = parts_.Recorder.RecordsInFile();
    shown_ = parts_.StatFile.Fingerprint();
    shownDay_ = DayOf(parts_.Clock.Now());
    parts_.StatFile.LoadStatFile(records_, false, [this](double fraction) {
        ShowProgress(fraction);
        return !cancelled_;
    });
    loading_ = false;
    // A part of the records must never be taken for all of them.
    if (cancelled_) return ReleaseRecords();
    ShowLoading(false);
    FindRunning();
    ShowRecords();
    FitColumns(true);
    WidenForColumns();
    if (OnGraph())
        ui_->SSTab->setFocus();
    else
        List().setFocus();
}

void frmStatistik::ShowLoading(bool loading) {
    ui_->prgLoading->setFormat(QString::fromStdString(parts_.Language.Lng("frmStatistikObj", 37)));
    ui_->prgLoading->setAccessibleName(ui_->prgLoading->format());
    ui_->prgLoading->setRange(0, 100);
    ui_->prgLoading->setValue(0);
    ui_->prgLoading->setVisible(loading);
    ui_->cmdCancel->setVisible(loading);
    SetEnabled({ui_->SSTab, ui_->cboFilter, ui_->cboKBMB}, !loading);
}

// ---- following the file

bool frmStatistik::MayReload() const {
    const bool atWork = loading_ || busy_ || !isVisible();
    return !atWork && QApplication::activePopupWidget() == nullptr &&
           QApplication::activeModalWidget() == nullptr;
}

void frmStatistik::FollowFile() {
    if (!MayReload() || isMinimized()) return;
    parts_.Errors.Step("FollowFile", [this] {
        const std::vector<OpenConnection> open = parts_.StatFile.Open();
        if (shownDay_ != DayOf(parts_.Clock.Now()) || shown_ != parts_.StatFile.Fingerprint(open))
            return Reload();
        FollowRunning(open);
        allowance_->Renew();
    });
}

void frmStatistik::FindRunning() {
    running_.clear();
    for (std::uint32_t i = 0; i < records_.List.size(); ++i) {
        if (IsRunning(records_.List[i])) running_.push_back(i);
    }
}

void frmStatistik::FollowRunning(const std::vector<OpenConnection>& open) {
    const QItemSelectionModel& selection = *ui_->ListStats->selectionModel();
    for (const std::uint32_t i : running_) {
        StatRecord& record = records_.List[i];
        if (!FollowOpen(record, open)) continue;
        ui_->ListStats->Model().Refresh(record);
        if (record.ListRow > 0 && selection.isRowSelected(record.ListRow - 1)) counts_.start();
    }
}

// The window is used meanwhile: what the user has changed by then is newer than what was read.
void frmStatistik::Reload() {
    const std::size_t known = parts_.Recorder.RecordsInFile();
    const std::size_t changes = changes_;
    const std::string found = parts_.StatFile.Fingerprint();
    StatRecords fresh;
    {
        const FlagGuard loading(loading_);
        parts_.StatFile.LoadStatFile(fresh, false,
                                     [&](double) { return !cancelled_ && changes == changes_; });
    }
    if (cancelled_) return ReleaseRecords();
    if (changes != changes_ || busy_) return; // the next look reads it again
    shown_ = found;
    shownDay_ = DayOf(parts_.Clock.Now());
    TakeRecords(std::move(fresh), known);
}

void frmStatistik::TakeRecords(StatRecords fresh, std::size_t known) {
    {
        const KeepListView place(*ui_->ListStats, [this](int row) { return KeyOfRecord(row); });
        ui_->ListStats->Model().SetRows(records_.List, {});
        records_ = std::move(fresh);
        recordsKnown_ = known;
        FindRunning();
        sumsNeedRecalculation_ = true;
        FillFilter();
        FillLists();
    }
    if (static_cast<std::size_t>(ui_->cboLines->count()) != parts_.Aliases.Lines().size() &&
        !records_.List.empty())
        tariff_->ShowLines(parts_.Aliases.Lines());
    graph_->ShowRecords(records_);
    FitColumns(false);
    ShowCounts();
}

// ---- long work

void frmStatistik::ShowProgress(double fraction) {
    if (!loading_ && !ui_->prgLoading->isVisible()) {
        ShowLoading(true);
        ui_->prgLoading->setFormat(QString::fromStdString(Text(51)));
    }
    // What cannot tell how far it is shows that it is alive.
    ui_->prgLoading->setMaximum(fraction > 0 || loading_ ? 100 : 0);
    ui_->prgLoading->setValue(static_cast<int>(fraction * 100));
}

void frmStatistik::EndProgress() {
    if (ui_->prgLoading->isVisible()) ShowLoading(false);
    if (cancelled_) ReleaseRecords(); // the window was closed meanwhile
    for (const auto& work : std::exchange(postponed_, {}))
        work();
}

// What the work in hand reads must not change.
void frmStatistik::Postpone(std::function<void()> work) {
    postponed_.push_back(std::move(work));
}

// False when the user has cancelled the work.
bool frmStatistik::RunJob(const std::function<void()>& work) {
    const QPointer<QWidget> focus = focusWidget();
    bool done = false;
    {
        const FlagGuard busy(busy_);
        done = job_.Run(work);
    }
    EndProgress();
    if (focus) focus->setFocus();
    return done && !cancelled_;
}

void frmStatistik::CancelWork() {
    if (!busy_) {
        close();
        return;
    }
    job_.Cancel();
    deletionCancelled_ = true;
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

// What is open has no place in the file.
std::int64_t frmStatistik::KeyOfRecord(int row) const {
    const StatRecord& record = ui_->ListStats->Model().Record(row);
    if (record.FileIndex != 0) return record.FileIndex;
    return -1 - static_cast<std::int64_t>(std::hash<std::string_view>()(record.LineName) >> 1);
}

std::pair<std::string, double> frmStatistik::KeyOfSum(int row) const {
    return {std::string(ui_->ListStatsSum->Model().Record(row).Alias),
            ui_->ListStatsSum->Model().Record(row).StatPeriodBegin};
}

void frmStatistik::FillStats() {
    {
        const KeepListView place(*ui_->ListStats, [this](int row) { return KeyOfRecord(row); });
        FillLists();
    }
    ShowCounts();
}

void frmStatistik::FillLists() {
    parts_.Errors.Step("FillStats", [&] {
        const std::string filter = ui_->cboFilter->currentData().toString().toStdString();
        ui_->ListStats->Model().SetRows(records_.List, FilterRows(records_.List, filter));
        FillSums();
    });
    ShowEmptyNotes();
}

void frmStatistik::FillSums() {
    const std::string filter = ui_->cboFilter->currentData().toString().toStdString();
    const KeepListView place(*ui_->ListStatsSum, [this](int row) { return KeyOfSum(row); });
    if (sumsNeedRecalculation_) {
        ui_->ListStatsSum->Model().SetRows(sums_.List, {});
        parts_.PeriodSums.CalcStatSums(records_, static_cast<SumPeriod>(ui_->optStatSum->checkedId()), sums_);
        sumsNeedRecalculation_ = false;
    }
    ui_->ListStatsSum->Model().SetRows(sums_.List, FilterRows(sums_.List, filter));
}

void frmStatistik::ShowEmptyNotes() {
    const std::string note = Text(records_.List.empty() ? 45 : 46);
    for (StatList* list : {ui_->ListStats, ui_->ListStatsSum})
        list->ShowNote(loading_ || list->Model().rowCount() > 0 ? std::string() : note);
}

// ---- the line below the lists

void frmStatistik::ShowCounts() {
    std::string text;
    if (!OnGraph()) {
        const auto number = [this](int count) { return FormatNumber(count, "#,##0", parts_.Locale); };
        const StatList& list = List();
        text = Text(42) + " " + number(list.Model().rowCount());
        if (const int selected = list.SelectedCount(); selected > 0)
            text += "   " + Text(43) + " " + number(selected) + list.SelectedSum();
    }
    ui_->lblRows->setText(QString::fromStdString(text));
}

// ---- changes of tariffs and aliases

// The records are the same ones in the same order: only what is made of them follows.
void frmStatistik::TariffChanged() {
    if (busy_) return Postpone([this] { TariffChanged(); });
    TakeUserChange();
    ShowTariffLines();
    sumsNeedRecalculation_ = true;
    parts_.Errors.Step("FillStats", [this] { FillSums(); });
    graph_->ShowRecords(records_);
    ShowCounts();
}

void frmStatistik::TakeUserChange() {
    ++changes_;
    parts_.MonthSums.CalcStatsThisMonth(records_, recordsKnown_);
}

// The lists, choices and graph of what the records are now.
void frmStatistik::ShowRecords() {
    FillFilter();
    ShowTariffLines();
    sumsNeedRecalculation_ = true;
    FillStats();
    graph_->ShowRecords(records_);
}

void frmStatistik::ShowTariffLines() {
    tariff_->ShowLines(records_.List.empty() ? std::vector<AliasInfo>() : parts_.Aliases.Lines());
}

void frmStatistik::AliasChanged(const std::string& from, const std::string& to) {
    if (busy_) return Postpone([this, from, to] { AliasChanged(from, to); });
    TakeUserChange();
    // An alias that no line has any more has been renamed.
    if (parts_.Aliases.AliasIndex(from) == 0) {
        if (EqualsNoCase(parts_.Settings.Get(Keys::Z_StatFilter), from))
            parts_.Settings.Set(Keys::Z_StatFilter, to);
        graph_->AliasRenamed(from, to);
    }
    ShowRecords();
    FitColumns(false);
}

void frmStatistik::optStatSum_Click(int period) {
    parts_.Settings.Set(Keys::z_optStatSum, std::to_string(period));
    sumsNeedRecalculation_ = true;
    FillStats();
}

void frmStatistik::cboFilter_Click() {
    const std::string alias = ui_->cboFilter->currentData().toString().toStdString();
    parts_.Settings.Set(Keys::Z_StatFilter, alias);
    FillStats();
    if (!alias.empty()) graph_->ChooseAlias(alias);
}

void frmStatistik::cboKBMB_Click() {
    unit_.Name = ui_->cboKBMB->currentText().toStdString();
    unit_.Bytes = FindUnitFactor(unit_.Name).value_or(1000);
    for (StatList* list : {ui_->ListStats, ui_->ListStatsSum})
        list->SetUnit(unit_);
    graph_->SetUnit(unit_.Name, unit_.Bytes);
    allowance_->SetUnit(unit_);
}

void frmStatistik::SortByColumn(StatList& list, int column, Qt::SortOrder direction) {
    const StatTableModel::Order order{column, direction};
    std::vector<std::uint32_t> rows;
    if (!RunJob([&] { rows = list.Model().Sorted(order, [this] { job_.At(0); }); })) return list.MarkOrder();
    const auto recordOf = [&](int row) { return list.Model().RecordOf(row); };
    using Keeper = KeepListView<decltype(recordOf)>;
    {
        const Keeper place(list, recordOf, Keeper::Top::Stay);
        list.Model().SetOrder(order, std::move(rows));
    }
    ShowCounts();
    if (&list != ui_->ListStats) return;
    parts_.Settings.Set(Keys::STATS_SortColumn, column);
    parts_.Settings.Set(Keys::STATS_SortDown, direction == Qt::DescendingOrder);
}

// The list of the page in front.
StatList& frmStatistik::List() const {
    return ui_->SSTab->currentWidget() == ui_->pageSums ? *ui_->ListStatsSum : *ui_->ListStats;
}

bool frmStatistik::OnGraph() const {
    return ui_->SSTab->currentWidget() == ui_->pageGraph;
}

} // namespace korvalin
