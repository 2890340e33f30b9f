#pragma once

#include "desktop/AboutBox.h"
#include "desktop/PanelService.h"
#include "display/frmMain.h"
#include "platform/linux/system/ExitWatch.h"
#include "platform/qt/DesktopNotifier.h"
#include "platform/qt/QtNotificationArea.h"
#include "settingsdlg/frmEinstellungen.h"
#include "stats/frmStatistik.h"

#include <QPointer>

#include <memory>

namespace korvalin {

class Program;
class QtMessageBoxes;
struct Ports;

/// From now on nobody can answer a message: it is kept for the next start.
void KeepMessages(QtMessageBoxes& messageBoxes, Program& program);

/// The windows of a program whose start is through, its icon in the tray, and what it tells the desktop.
class DesktopWindows {
  public:
    DesktopWindows(Program& program, const Ports& ports, QtMessageBoxes& messageBoxes);
    ~DesktopWindows();
    DesktopWindows(const DesktopWindows&) = delete;
    DesktopWindows& operator=(const DesktopWindows&) = delete;

    /// Begins with the first update, which shows the main window or puts it away. A `newcomer` is told what
    /// there is to see.
    void Show(bool newcomer);

    /// Brings the main window to the front.
    void Raise();

    /// Closes all windows for good and ends the program.
    void Quit(CloseReason reason);

    /// To be called after the event loop: nobody deletes a window that is closed at the very end.
    void CloseSettings();

  private:
    void PlugMainWindow();
    void PlugNotifier();
    void OpenStatistics();
    void OpenSums();
    void OpenSettings();
    void OpenFirstStart();

    Program& program_;
    const Ports& ports_;
    QtMessageBoxes& messageBoxes_;
    std::unique_ptr<frmStatistik> statistics_; // made when it is first wanted
    DesktopNotifier notifier_;
    QtNotificationArea tray_;
    QPointer<frmEinstellungen> settings_; // exists only while it is shown
    frmMain window_;
    AboutBox about_;
    PanelService panel_;
    ExitWatch exitWatch_;
};

} // namespace korvalin
