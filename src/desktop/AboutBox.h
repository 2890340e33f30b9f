#pragma once

#include "platform/qt/CurlTransferControl.h"

#include <QPointer>

namespace korvalin {

class Program;
class Shell;
class frmAbout;
class frmMain;

/// The about box, and the update check that shows itself in it.
class AboutBox {
  public:
    /// `window` is closed for a new version to take over.
    AboutBox(Program& program, Shell& shell, frmMain& window);
    ~AboutBox();
    AboutBox(const AboutBox&) = delete;
    AboutBox& operator=(const AboutBox&) = delete;

    /// Shows the box or brings it to the front.
    void Open();

    /// Runs the scheduled check if it is due. It takes its time, so it runs from the event loop: samples go
    /// on being taken meanwhile.
    void ScheduleCheck();

  private:
    void PlugFetch();
    void PlugCheck();
    bool UserIsBusy() const;

    Program& program_;
    Shell& shell_;
    frmMain& window_;
    CurlTransferControl control_;
    QTimer check_;
    QPointer<frmAbout> box_; ///< exists only while it is shown
};

} // namespace korvalin
