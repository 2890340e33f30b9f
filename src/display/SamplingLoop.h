#pragma once

#include "display/InfoTexts.h"
#include "display/RateHistory.h"
#include "platform/Screen.h"
#include "traffic/ClockWatch.h"
#include "traffic/LineRecord.h"

#include <functional>
#include <optional>

namespace korvalin {

class Errors;
class LineMonitor;
class Settings;

/// Left and top edge of a window in twips.
struct WindowPosition {
    int Left = 0, Top = 0;
    bool operator==(const WindowPosition&) const = default;
};

/// What the core asks of the main window.
class MonitorWindow {
  public:
    virtual ~MonitorWindow() = default;

    /// Redraws the chart; `force` also when its picture is not visible.
    virtual void DrawChart(bool force) = 0;
    /// Draws the tray icon of the newest sample.
    virtual void IconDraw() = 0;
    /// Puts the caption text on the window if its caption is shown.
    virtual void ShowCaption() = 0;
    virtual void ShowMainWindow(bool show) = 0;
    virtual bool HangUpItemVisible() = 0;
    /// Rebuilds the menus for dialing and hanging up.
    virtual void RefreshDialMenus() = 0;
    /// Rebuilds the menu of the lines.
    virtual void RefreshLinesMenu() = 0;
    /// Puts the window to its stored place.
    virtual void RestoreGeometry() = 0;
    /// Stores the window's place.
    virtual void SaveGeometry() = 0;
    /// The window's place now, in twips.
    virtual WindowPosition Position() = 0;

    // What follows a setting at once.

    /// Keeps the window above all others, or no longer.
    virtual void SetTopmost(bool topmost) = 0;
    /// The window's layered alpha: 0 invisible, 255 opaque.
    virtual void SetOpacity(int alpha) = 0;
    /// Puts the program's own picture and name into the tray, for an icon that shows no values.
    virtual void ShowFixedTrayIcon() = 0;
};

/// Runs one update a second: has the lines read, appends a sample per line to the history and redraws.
class SamplingLoop {
  public:
    struct Parts {
        korvalin::Clock& Clock;
        korvalin::Screen& Screen;
        korvalin::Settings& Settings;
        korvalin::LineState& LineState;
        korvalin::LineMonitor& LineMonitor;
        korvalin::RateHistory& RateHistory;
        korvalin::InfoTexts& InfoTexts;
        korvalin::Errors& Errors;
    };
    /// The automatic update check.
    struct Hooks {
        /// Called at every transition to online; may set the pending flag.
        std::function<void()> Schedule = [] {};
        /// Looks for an update; an installation ends the program by itself.
        std::function<void()> Check = [] {};
    };
    explicit SamplingLoop(const Parts& parts) : parts_(parts), watch_(parts.Clock) {}

    void Plug(Hooks hooks) { hooks_ = std::move(hooks); }
    void Attach(MonitorWindow* window) { window_ = window; }

    /// One tick of the fast timer: runs an update when a second has passed since the last one.
    void TimerMain_Timer();

    /// Milliseconds until the next tick can have something to do (0 to 1001): the timer need not fire before.
    int MillisecondsToNextStep() const;

    /// The update routine; returns at once when it is already running.
    void Get_TransferedData();

    /// Fits the history to the number of lines and to ConnDataMax; a chart that shows more raises
    /// ConnDataMax.
    void ResizeRateHistory();

    /// The moments that a set wall clock moves were taken just now.
    void RestartClockWatch() { watch_.Restart(); }

    /// Number of samples across the chart, as last drawn.
    void SetVisibleSamples(std::size_t visible) { visibleSamples_ = visible; }

    /// Arms the automatic update check; `due` is its moment.
    void SetUpdateCheckPending(Date due);

  private:
    void FollowWallClock();
    void FollowChartLine();
    void CheckForUpdate();
    void WatchScreenSize();
    void WatchWindowPosition();
    bool RefreshMenus();
    void HandleOnlineChange(bool hangUpWasVisible);
    void AppendSample(std::size_t line);

    Parts parts_;
    MonitorWindow* window_ = nullptr;
    Hooks hooks_;
    ClockWatch watch_;

    bool updateBusy_ = false;
    bool lastOnline_ = false;
    bool firstUpdateDone_ = false;
    // From seconds awake to seconds since midnight of the first update's day.
    std::optional<double> timeBase_;
    double lastStep_ = 0; ///< seconds awake at the last one-second step
    bool updateCheckPending_ = false;
    Date nextUpdateCheck_ = 0;
    ScreenSize lastScreen_;
    std::optional<WindowPosition> lastWindowPos_;
    std::size_t visibleSamples_ = 0;
};

} // namespace korvalin
