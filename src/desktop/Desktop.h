#pragma once

#include "desktop/DesktopWindows.h"
#include "desktop/EndRequests.h"
#include "dialogs/Manual.h"
#include "dialogs/QtDialDialog.h"
#include "dialogs/QtMessageBoxes.h"
#include "platform/linux/system/InstanceDoor.h"
#include "platform/linux/system/LinuxSystem.h"
#include "platform/qt/QtEvents.h"
#include "platform/qt/QtScreen.h"
#include "program/Program.h"

#include <QSocketNotifier>

#include <memory>

namespace korvalin {

/// The program with its windows on this system's back ends, from its start to its end.
class Desktop {
  public:
    /// After the toolkit's application; `termination` was made before it.
    explicit Desktop(const TerminationSignals& termination);
    ~Desktop();
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    /// Runs until the program ends; returns the exit code.
    int Run();

  private:
    void AskLanguage();
    void OpenDoor();
    void Knocked();
    void EndRequested(CloseReason reason);

    QtMessageBoxes messageBoxes_;
    QtScreen screen_;
    QtEvents events_;
    LinuxSystem system_;
    Ports ports_;
    Program program_;
    Manual manual_;
    QtDialDialog dialDialog_;
    InstanceDoor door_;
    std::unique_ptr<QSocketNotifier> knocks_;
    EndRequests endRequests_;
    std::unique_ptr<DesktopWindows> windows_; ///< until then only the questions of the start can be open
    bool languageChosen_ = false;             ///< in this very start
    bool ends_ = false;
};

} // namespace korvalin
