#pragma once

#include "display/ChartPainter.h"
#include "display/DialMenu.h"
#include "display/Fade.h"
#include "display/LinesMenu.h"
#include "display/SamplingLoop.h"
#include "display/TrayIcon.h"
#include "display/WindowFrame.h"
#include "display/WindowGeometry.h"
#include "traffic/CloseReason.h"

#include <QTimer>
#include <QWidget>

#include <memory>

namespace Ui {
class frmMain;
}

namespace korvalin {

class Language;
class LiveTexts;
class MessageBoxes;
class MonthSums;

/// The program's only permanent window: the live chart, its drag handle and the popup menu.
class frmMain : public QWidget, public MonitorWindow {
    Q_OBJECT

  public:
    /// What the window shows and drives; all of it outlives the window.
    struct Parts {
        korvalin::Settings& Settings;
        korvalin::Language& Language;
        korvalin::Screen& Screen;
        korvalin::SamplingLoop& SamplingLoop;
        korvalin::LineState& LineState;
        const korvalin::RateHistory& RateHistory;
        korvalin::InfoTexts& InfoTexts;
        korvalin::LiveTexts& LiveTexts;
        korvalin::MonthSums& MonthSums;
        korvalin::Errors& Errors;
        korvalin::Clock& Clock;
        const korvalin::Locale& Locale;
        korvalin::NotificationArea& NotificationArea;
        korvalin::MessageBoxes& MessageBoxes;
        korvalin::Dialing& Dialing;
    };
    /// What the floors above plug in; each may stay as it is.
    struct Hooks {
        /// The window closes for good, its tray icon is gone: open connections are recorded. Called once.
        std::function<void(CloseReason reason)> Closing = [](CloseReason) {};
        /// Whether the window may not be put away now.
        std::function<bool()> StaysShown = [] { return false; };
        /// Opens the statistics window; its menu entry is hidden while nobody does.
        std::function<void()> OpenStatistics = {};
        /// Opens the settings dialog; its menu entry is hidden while nobody does.
        std::function<void()> OpenSettings = {};
        /// Opens the about box; its menu entry is hidden while nobody does.
        std::function<void()> OpenAbout = {};
    };

    explicit frmMain(const Parts& parts);
    ~frmMain() override;

    void Plug(Hooks hooks);

    /// Puts texts, place and modes on the window, shows it as the settings want and starts the timer.
    void Form_Load();

    /// Puts the texts of the chosen language on window and menu.
    void ApplyTexts();

    /// Fades the window in from invisible.
    void StartFade();

    /// Closes the window for good and ends the program.
    void Quit(CloseReason reason = CloseReason::Program);

    /// The display is gone, and the process about to end: only the open connections can still be recorded.
    void DisplayLost();

    /// Rebuilds the dial menus when the phone book has another number of entries than at the last call;
    /// without `force` the number is only noted.
    void RefreshDialMenusIfChanged(bool force);

    bool WindowShown() const { return windowShown_; }

    // MonitorWindow
    void DrawChart(bool force) override;
    void IconDraw() override;
    void ShowCaption() override;
    void ShowMainWindow(bool show) override;
    bool HangUpItemVisible() override;
    void RefreshDialMenus() override;
    void RefreshLinesMenu() override;
    void RestoreGeometry() override;
    void SaveGeometry() override;
    WindowPosition Position() override;
    void SetTopmost(bool topmost) override;
    void SetOpacity(int alpha) override;
    void ShowFixedTrayIcon() override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    void ConnectMenu();
    void ConnectFrame();
    void AddTrayIcon();
    void TrayHostChanged();
    void PutAway();
    void RaiseWindowsAbove();
    void TellThatNoTrayIsThere();
    bool InSight() const { return isVisible() && !isMinimized(); }
    void Close(CloseReason reason);
    void SetTitleOnly();
    void mnuTitelAnzeigen_Click();
    void mnuNurTitel_Click();
    void mnuVordergrund_Click();
    void mnuLines_Click(std::size_t line);
    void mnuLogInLine_Click(const std::string& entryName);
    void mnuLogOut_Click();
    template <typename Operation>
    void RunDialing(Operation operation);
    void lblMove_MouseDown(const QMouseEvent& event);
    void lblMove_MouseMove(const QMouseEvent& event);
    void lblMove_DblClick();
    void TimerMain_Timer();
    void TimerFade_Timer();
    void OpenPopupMenu(const QPoint& at);
    void SetSmallestSize();
    void KeepNewSize();
    void SpeakRates();
    void SetWindowHeight(int twips);
    Qt::Edges EdgesAt(const QPoint& at) const;

    Parts parts_;
    Hooks hooks_;
    std::unique_ptr<Ui::frmMain> ui_;
    WindowGeometry geometry_;
    WindowFrame frame_;
    ChartPainter painter_;
    LinesMenu linesMenu_;
    DialMenu dialMenu_;
    TrayIcon tray_;
    std::size_t phoneBookEntries_ = 0;
    QTimer timerMain_;
    QTimer timerFade_;
    QTimer sizeSettles_; // runs while the window is being sized
    Fade fade_;
    bool loaded_ = false;
    bool windowShown_ = false;
    bool titleOnly_ = false;
    bool closed_ = false;
    bool refreshingDialMenus_ = false;
    bool leftButtonDown_ = false;
    QPoint grabPoint_;
};

} // namespace korvalin
