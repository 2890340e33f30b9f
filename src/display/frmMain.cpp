#include "display/frmMain.h"

#include "base/FlagGuard.h"
#include "base/ProgramTitle.h"
#include "display/LiveTexts.h"
#include "errors/Errors.h"
#include "forms/Loaded.h"
#include "forms/MakeUi.h"
#include "forms/SpokenName.h"
#include "forms/Twips.h"
#include "lang/ApplyFormTexts.h"
#include "lang/Language.h"
#include "platform/MessageBoxes.h"
#include "platform/NotificationArea.h"
#include "settings/Settings.h"
#include "ui_frmMain.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QWindow>

namespace korvalin {
namespace {

constexpr int marginTwips = 10;
constexpr int smallestChartTwips = 540; // what the chart needs for its texts, margins included
constexpr int heightForTextsTwips = 850;
// As much of the window must be on a screen for the user to get hold of it.
constexpr int smallestPartInSight = 30;
constexpr int edgePixels = 5; // how close to its edge a window without a frame is resized instead of moved
constexpr double opaque = 255.0;
constexpr int sizeSettlesMilliseconds = 300;

Qt::CursorShape CursorFor(Qt::Edges edges) {
    if (edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge))
        return Qt::SizeFDiagCursor;
    if (edges == (Qt::RightEdge | Qt::TopEdge) || edges == (Qt::LeftEdge | Qt::BottomEdge))
        return Qt::SizeBDiagCursor;
    if (edges & (Qt::LeftEdge | Qt::RightEdge)) return Qt::SizeHorCursor;
    return edges ? Qt::SizeVerCursor : Qt::ArrowCursor;
}

} // namespace

frmMain::frmMain(const Parts& parts)
    : parts_(parts),
      ui_(MakeUi<Ui::frmMain>(*this)),
      geometry_(parts.Settings, parts.Screen),
      frame_(*this),
      painter_({.LineState = parts.LineState,
                .RateHistory = parts.RateHistory,
                .Language = parts.Language,
                .Errors = parts.Errors,
                .Clock = parts.Clock,
                .Locale = parts.Locale}),
      linesMenu_(*ui_->mnuTrayIcon, *ui_->mnuLines0),
      dialMenu_({.LogIn = *ui_->mnuLogIn,
                 .Quick = *ui_->mnuLogInQuick,
                 .LogOut = *ui_->mnuLogOut,
                 .Separator = *ui_->mnuTrennEinwahl}),
      tray_({.NotificationArea = parts.NotificationArea,
             .Menu = *ui_->mnuTrayIcon,
             .LineState = parts.LineState,
             .MonthSums = parts.MonthSums,
             .Errors = parts.Errors,
             .Locale = parts.Locale}) {
    setWindowIconText(QString::fromUtf8(ProgramTitle.data(), static_cast<qsizetype>(ProgramTitle.size())));
    sizeSettles_.setSingleShot(true);
    sizeSettles_.setInterval(sizeSettlesMilliseconds);
    connect(&sizeSettles_, &QTimer::timeout, this, [this] { SaveGeometry(); });
    ui_->lblMove->installEventFilter(this);
    ConnectMenu();
    parts_.NotificationArea.Plug({[this] { TrayHostChanged(); }, [this] { ShowMainWindow(!InSight()); }});
    timerMain_.setSingleShot(true);
    timerMain_.setTimerType(Qt::PreciseTimer);
    timerFade_.setInterval(Fade::StepMilliseconds);
    connect(&timerMain_, &QTimer::timeout, this, [this] { TimerMain_Timer(); });
    connect(&timerFade_, &QTimer::timeout, this, [this] { TimerFade_Timer(); });
    ConnectFrame();
    connect(qApp, &QGuiApplication::screenRemoved, this, [this] {
        if (isVisible() && !isMinimized()) RestoreGeometry();
    });
}

void frmMain::ConnectFrame() {
    connect(&frame_, &WindowFrame::CaptionMeasured, this, [this](int height) {
        // A start without a caption has none to measure.
        parts_.Settings.Set(Keys::MON_CaptionHeight, height);
        SetSmallestSize();
    });
    connect(&frame_, &WindowFrame::PlaceAgain, this, &frmMain::RestoreGeometry);
    connect(&frame_, &WindowFrame::Settled, this, &frmMain::SaveGeometry);
}

frmMain::~frmMain() {
    parts_.SamplingLoop.Attach(nullptr);
    parts_.NotificationArea.Plug({});
}

void frmMain::Plug(Hooks hooks) {
    hooks_ = std::move(hooks);
    ui_->mnuStatistik->setVisible(static_cast<bool>(hooks_.OpenStatistics));
    ui_->mnuEinstellungen->setVisible(static_cast<bool>(hooks_.OpenSettings));
    ui_->mnuInfo->setVisible(static_cast<bool>(hooks_.OpenAbout));
}

void frmMain::ConnectMenu() {
    // Whoever opens it: the chart, the tray, a desktop that draws the menu itself.
    connect(ui_->mnuTrayIcon, &QMenu::aboutToShow, this, [this] { RefreshDialMenus(); });
    connect(ui_->mnuLogOut, &QAction::triggered, this, [this] { mnuLogOut_Click(); });
    connect(ui_->mnuStatistik, &QAction::triggered, this, [this] { hooks_.OpenStatistics(); });
    connect(ui_->mnuEinstellungen, &QAction::triggered, this, [this] { hooks_.OpenSettings(); });
    connect(ui_->mnuInfo, &QAction::triggered, this, [this] { hooks_.OpenAbout(); });
    connect(&linesMenu_, &LinesMenu::Chosen, this, &frmMain::mnuLines_Click);
    connect(&dialMenu_, &DialMenu::Chosen, this, &frmMain::mnuLogInLine_Click);
    connect(ui_->mnuTitelAnzeigen, &QAction::triggered, this, [this] { mnuTitelAnzeigen_Click(); });
    connect(ui_->mnuNurTitel, &QAction::triggered, this, [this] { mnuNurTitel_Click(); });
    connect(ui_->mnuVordergrund, &QAction::triggered, this, [this] { mnuVordergrund_Click(); });
    connect(ui_->mnuTest, &QAction::triggered, this, [this] { RestoreGeometry(); });
    connect(ui_->mnuBeenden, &QAction::triggered, this, [this] { Quit(); });
}

void frmMain::Form_Load() {
    ApplyTexts();
    frame_.SetCaptionHeight(parts_.Settings.Get(Keys::MON_CaptionHeight));
    SetSmallestSize();
    ui_->mnuTest->setVisible(parts_.Settings.Get(Keys::Test));
    if (parts_.Settings.Get(Keys::ForeGround)) ui_->mnuVordergrund->trigger();
    RestoreGeometry();
    if (!parts_.Settings.Get(Keys::ShowTitle)) ui_->mnuTitelAnzeigen->trigger();
    titleOnly_ = parts_.Settings.Get(Keys::NurTitel);
    ui_->mnuNurTitel->setChecked(titleOnly_);
    if (titleOnly_) SetTitleOnly();
    AddTrayIcon();
    RefreshDialMenus();
    parts_.SamplingLoop.Attach(this);
    if (parts_.InfoTexts.AutoShow) StartFade();
    loaded_ = true;
    if (!parts_.InfoTexts.AutoShow) ShowMainWindow(false);
    // The first update shows the window, or puts it aside when the machine is offline: a window manager that
    // was just asked to map a window would not iconify it.
    TimerMain_Timer();
}

void frmMain::ApplyTexts() {
    ApplyFormTexts(*this, parts_.Language);
}

void frmMain::TimerMain_Timer() {
    parts_.SamplingLoop.TimerMain_Timer();
    if (ui_->mnuTrayIcon->isVisible()) RefreshDialMenusIfChanged(true);
    if (!closed_) timerMain_.start(parts_.SamplingLoop.MillisecondsToNextStep());
}

void frmMain::DrawChart(bool force) {
    // The toolkit counts a window in the taskbar as visible.
    const bool drawable = windowShown_ && !titleOnly_ && (force || !isMinimized());
    parts_.LiveTexts.Renew(parts_.InfoTexts);
    const bool isHighEnough = painter_.DrawChart(*ui_->PicChart, parts_.InfoTexts, force, drawable);
    // Until it is drawn again the painter tells of the chart that was.
    if (drawable) parts_.SamplingLoop.SetVisibleSamples(painter_.VisibleSamples());
    SpeakRates();
    if (!isHighEnough) SetWindowHeight(heightForTextsTwips);
}

// For those who cannot see the chart, nor the window that has no title while its caption is switched off.
void frmMain::SpeakRates() {
    const std::size_t line = parts_.InfoTexts.LineIndex;
    const QString name =
        line > 0 ? QString::fromStdString(parts_.LineState.LineTable(line).LineName) : QString();
    const QString rates = QString::fromStdString(parts_.InfoTexts.CaptionText).simplified();
    SpeakAs(*this, windowIconText(), rates);
    SpeakAs(*ui_->PicChart, name.isEmpty() ? windowIconText() : name, rates);
}

void frmMain::IconDraw() {
    tray_.IconDraw(parts_.InfoTexts);
}

void frmMain::AddTrayIcon() {
    tray_.TrayIconSet(true, tray_.StaticPicture(), std::string(ProgramTitle));
}

void frmMain::ShowFixedTrayIcon() {
    tray_.ShowStatic(std::string(ProgramTitle));
}

void frmMain::TrayHostChanged() {
    if (!loaded_ || closed_) return;
    if (parts_.NotificationArea.Host() == TrayHost::Present) {
        AddTrayIcon();
        IconDraw();
    }
    if (!windowShown_) PutAway();
}

// Out of sight, to where the user finds it again: behind the icon in the tray, else in the taskbar. While
// nobody knows, a window that was not on the screen yet waits for the answer.
void frmMain::PutAway() {
    const TrayHost host = parts_.NotificationArea.Host();
    if (host == TrayHost::Present) {
        hide();
    } else if (host == TrayHost::Absent || isVisible()) {
        showMinimized();
    }
}

void frmMain::ShowCaption() {
    if (ui_->mnuTitelAnzeigen->isChecked())
        setWindowTitle(QString::fromStdString(parts_.InfoTexts.CaptionText));
}

void frmMain::ShowMainWindow(bool show) {
    KeepNewSize();
    if (show) {
        const bool wasHidden = !isVisible() || isMinimized();
        windowShown_ = true;
        setWindowState(Qt::WindowNoState);
        DrawChart(true);
        if (wasHidden) frame_.AwaitShowing();
        QWidget::show();
        frame_.Raise();
        RestoreGeometry();
        RaiseWindowsAbove();
    } else if (!hooks_.StaysShown()) {
        windowShown_ = false;
        PutAway();
    }
}

// Windows that stay on top would be below this one, which does so too or has just been raised.
void frmMain::RaiseWindowsAbove() {
    const auto forms = LoadedForms();
    for (const QPointer<QWidget>& form : forms) {
        if (form == this || !form->isVisible()) continue;
        if (form->windowFlags().testFlag(Qt::WindowStaysOnTopHint)) form->raise();
    }
}

bool frmMain::HangUpItemVisible() {
    return ui_->mnuLogOut->isVisible();
}

// Not while a message about the phone book is open, which lets the next update come.
void frmMain::RefreshDialMenus() {
    if (refreshingDialMenus_) return;
    const FlagGuard refreshing(refreshingDialMenus_);
    parts_.Errors.Step("RefreshDialMenus", [this] { dialMenu_.Show(parts_.Dialing.Choices()); });
}

void frmMain::RefreshDialMenusIfChanged(bool force) {
    const std::size_t entries = parts_.Dialing.EntriesCount();
    if (entries == phoneBookEntries_) return;
    phoneBookEntries_ = entries;
    if (force) RefreshDialMenus();
}

void frmMain::RefreshLinesMenu() {
    linesMenu_.Refresh(parts_.LineState, parts_.InfoTexts);
}

// A size of just now is stored before the window goes, or is put to its stored place.
void frmMain::KeepNewSize() {
    if (!sizeSettles_.isActive()) return;
    sizeSettles_.stop();
    SaveGeometry();
}

void frmMain::RestoreGeometry() {
    if (QGuiApplication::primaryScreen() == nullptr) return;
    TwipsRect place = geometry_.Restore(frame_.CaptionShown() ? 0 : frame_.CaptionHeight());
    const QRect pixels(TwipsToPixels(place.Left), TwipsToPixels(place.Top), TwipsToPixels(place.Width),
                       TwipsToPixels(place.Height));
    // The screen it lay on may be gone.
    const auto screens = QGuiApplication::screens();
    const bool seen = std::any_of(screens.begin(), screens.end(), [&](const QScreen* screen) {
        const QRect part = screen->geometry() & pixels;
        return part.width() >= smallestPartInSight && part.height() >= smallestPartInSight;
    });
    if (!seen) {
        const QRect primary = QGuiApplication::primaryScreen()->availableGeometry();
        place.Left = PixelsToTwips(primary.right() - pixels.width());
        place.Top = PixelsToTwips(primary.bottom() - pixels.height());
    }
    frame_.MoveTo(place);
    if (titleOnly_) frame_.SetInnerHeight(1);
}

void frmMain::SaveGeometry() {
    const auto otherStates = Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen;
    if (!loaded_ || !isVisible() || (windowState() & otherStates) || !frame_.IsSettled()) return;
    if (QGuiApplication::primaryScreen() == nullptr) return;
    const int hiddenCaption = ui_->mnuTitelAnzeigen->isChecked() ? 0 : frame_.CaptionHeight();
    geometry_.Save(frame_.Place(), hiddenCaption, titleOnly_);
}

WindowPosition frmMain::Position() {
    frame_.LookForFrame();
    const TwipsRect place = frame_.Place();
    return {place.Left, place.Top};
}

void frmMain::SetWindowHeight(int twips) {
    frame_.SetInnerHeight(TwipsToPixels(twips - (frame_.CaptionShown() ? frame_.CaptionHeight() : 0)));
}

void frmMain::mnuTitelAnzeigen_Click() {
    const bool show = ui_->mnuTitelAnzeigen->isChecked();
    parts_.Settings.Set(Keys::ShowTitle, show);
    if (!show && !titleOnly_) setWindowTitle(QString());
    if (show) ShowCaption();
    frame_.ShowCaption(show);
    SetSmallestSize();
}

void frmMain::mnuNurTitel_Click() {
    titleOnly_ = ui_->mnuNurTitel->isChecked();
    parts_.Settings.Set(Keys::NurTitel, titleOnly_);
    SetTitleOnly();
}

void frmMain::SetTitleOnly() {
    ui_->PicChart->setVisible(!titleOnly_);
    if (titleOnly_) {
        SetSmallestSize();
        if (!ui_->mnuTitelAnzeigen->isChecked()) ui_->mnuTitelAnzeigen->trigger();
        ui_->mnuTitelAnzeigen->setEnabled(false); // a title is all there is to see
        frame_.SetInnerHeight(1);
    } else {
        ui_->mnuTitelAnzeigen->setEnabled(true);
        RestoreGeometry(); // first: the smallest size alone would be taken for the user's
        SetSmallestSize();
        DrawChart(true);
    }
}

void frmMain::mnuVordergrund_Click() {
    const bool topmost = ui_->mnuVordergrund->isChecked();
    frame_.SetTopmost(topmost);
    parts_.Settings.Set(Keys::ForeGround, topmost);
}

void frmMain::SetTopmost(bool topmost) {
    ui_->mnuVordergrund->setChecked(topmost);
    frame_.SetTopmost(topmost);
}

void frmMain::SetOpacity(int alpha) {
    timerFade_.stop(); // a fade would go on to the opacity of before
    setWindowOpacity(alpha / opaque);
}

void frmMain::mnuLines_Click(std::size_t line) {
    parts_.InfoTexts.ChartLineNo = static_cast<int>(line);
    parts_.InfoTexts.ChartLineName = parts_.LineState.LineTable(line).EntryName;
    linesMenu_.Check(line);
    parts_.Settings.Set(Keys::ChartLineNo, parts_.InfoTexts.ChartLineNo);
    parts_.Settings.Set(Keys::ChartLineName, parts_.InfoTexts.ChartLineName);
    DrawChart(false);
}

// Queued: updates go on meanwhile and rebuild the menu, which must be done with the click by then.
template <typename Operation>
void frmMain::RunDialing(Operation operation) {
    const auto run = [this, operation = std::move(operation)] {
        if (closed_ || parts_.Dialing.Busy()) return;
        dialMenu_.SetEnabled(false);
        operation();
        dialMenu_.SetEnabled(true);
        if (!closed_) RefreshDialMenus();
    };
    QMetaObject::invokeMethod(this, run, Qt::QueuedConnection);
}

void frmMain::mnuLogInLine_Click(const std::string& entryName) {
    RunDialing([this, entryName] { parts_.Dialing.DialEntry(entryName); });
}

void frmMain::mnuLogOut_Click() {
    RunDialing([this] { parts_.Dialing.MONHangUp(); });
}

// Window managers keep the edge that is not dragged in place when they know the smallest size.
void frmMain::SetSmallestSize() {
    const int caption = frame_.CaptionShown() ? TwipsToPixels(frame_.CaptionHeight()) : 0;
    const int height =
        std::max(TwipsToPixels(SmallestHeightTwips) - caption, TwipsToPixels(smallestChartTwips));
    setMinimumSize(TwipsToPixels(SmallestWidthTwips), titleOnly_ ? 1 : height);
}

void frmMain::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const int margin = TwipsToPixels(marginTwips);
    const QRect inside = rect().adjusted(margin, margin, -margin, -margin);
    ui_->PicChart->setGeometry(inside);
    ui_->lblMove->setGeometry(inside);
    if (!loaded_ || isMinimized() || titleOnly_) return;
    DrawChart(false);
    if (frame_.IsSettled()) sizeSettles_.start();
}

void frmMain::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    // A window manager raises what it activates.
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) RaiseWindowsAbove();
    // The quick item's caption has become the designed one.
    if (event->type() == QEvent::LanguageChange) RefreshDialMenus();
    if (event->type() != QEvent::WindowStateChange || !loaded_ || isMinimized() || !isVisible()) return;
    // Brought back from the taskbar, perhaps for the first time.
    windowShown_ = true;
    if (!frame_.IsSettled()) frame_.AwaitFrame();
    DrawChart(true);
}

// From the window's close box or menu; everything else that ends the program calls Quit.
void frmMain::closeEvent(QCloseEvent* event) {
    if (closed_) return event->accept();
    if (!parts_.InfoTexts.CloseTrayOnly) return Quit(CloseReason::WindowMenu);
    event->ignore();
    if (parts_.NotificationArea.Host() == TrayHost::Absent) TellThatNoTrayIsThere();
    ShowMainWindow(false);
}

void frmMain::TellThatNoTrayIsThere() {
    if (parts_.Settings.Get(Keys::NoTrayTold)) return;
    parts_.Settings.Set(Keys::NoTrayTold, true);
    parts_.MessageBoxes.Show(parts_.Language.Lng("modAllgemein", 60), std::string(ProgramTitle),
                             MessageIcon::Information, MessageButtons::Ok);
}

void frmMain::Quit(CloseReason reason) {
    if (closed_) return;
    timerMain_.stop();
    timerFade_.stop();
    tray_.TrayIconSet(false);
    Close(reason);
    SaveGeometry();
    hide();
    UnloadOtherForms(*this);
    // Queued: the event loop may not have begun yet.
    QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}

void frmMain::DisplayLost() {
    if (!closed_) Close(CloseReason::SystemEnd);
}

void frmMain::Close(CloseReason reason) {
    closed_ = true;
    parts_.Dialing.Stop();
    hooks_.Closing(reason);
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
    if (watched != ui_->lblMove) return QWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::MouseButtonPress: lblMove_MouseDown(*static_cast<QMouseEvent*>(event)); return true;
    case QEvent::MouseMove: lblMove_MouseMove(*static_cast<QMouseEvent*>(event)); return true;
    case QEvent::MouseButtonDblClick: lblMove_DblClick(); return true;
    default: return false;
    }
}

void frmMain::contextMenuEvent(QContextMenuEvent* event) {
    // The mouse opens the menu when its button goes down; this is the keyboard's way.
    if (event->reason() == QContextMenuEvent::Keyboard) OpenPopupMenu(mapToGlobal(rect().center()));
}

void frmMain::OpenPopupMenu(const QPoint& at) {
    ui_->mnuTrayIcon->popup(at);
}

// Without a frame there is nothing else to size the window by.
Qt::Edges frmMain::EdgesAt(const QPoint& at) const {
    Qt::Edges edges;
    if (frame_.CaptionShown()) return edges;
    if (at.x() < edgePixels) edges |= Qt::LeftEdge;
    if (at.x() >= width() - edgePixels) edges |= Qt::RightEdge;
    if (at.y() < edgePixels) edges |= Qt::TopEdge;
    if (at.y() >= height() - edgePixels) edges |= Qt::BottomEdge;
    return edges;
}

void frmMain::lblMove_MouseDown(const QMouseEvent& event) {
    if (event.button() == Qt::RightButton) OpenPopupMenu(event.globalPosition().toPoint());
    leftButtonDown_ = event.button() == Qt::LeftButton;
    const Qt::Edges edges = EdgesAt(ui_->lblMove->mapToParent(event.pos()));
    if (leftButtonDown_ && edges && windowHandle()->startSystemResize(edges)) leftButtonDown_ = false;
    grabPoint_ = event.pos();
}

void frmMain::lblMove_MouseMove(const QMouseEvent& event) {
    if ((event.buttons() & Qt::LeftButton) != 0 && leftButtonDown_) {
        frame_.LetGo();
        // The frame's place would be reckoned with the caption that was just switched off.
        setGeometry(geometry().translated(event.pos() - grabPoint_));
        return;
    }
    const Qt::Edges edges = EdgesAt(ui_->lblMove->mapToParent(event.pos()));
    ui_->lblMove->setCursor(CursorFor(edges));
}

void frmMain::lblMove_DblClick() {
    if (leftButtonDown_) ShowMainWindow(!windowShown_);
}

void frmMain::StartFade() {
    fade_.Start();
    setWindowOpacity(0);
    timerFade_.start();
}

void frmMain::TimerFade_Timer() {
    const Fade::Tick tick = fade_.Next(parts_.InfoTexts.Opacity);
    setWindowOpacity(tick.Alpha / opaque);
    if (tick.Finished) timerFade_.stop();
}

} // namespace korvalin
