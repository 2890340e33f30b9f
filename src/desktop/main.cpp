#include "desktop/AboutBox.h"
#include "desktop/EndRequests.h"
#include "desktop/SettingsDialog.h"
#include "dialogs/Manual.h"
#include "dialogs/QtDialDialog.h"
#include "dialogs/QtMessageBoxes.h"
#include "display/frmMain.h"
#include "forms/Loaded.h"
#include "forms/ProgramIcon.h"
#include "lang/ToolkitTexts.h"
#include "lang/frmLanguage.h"
#include "platform/InstanceLock.h"
#include "platform/Shell.h"
#include "platform/linux/system/ExitWatch.h"
#include "platform/linux/system/InstanceDoor.h"
#include "platform/linux/system/LinuxLocale.h"
#include "platform/linux/system/LinuxSystem.h"
#include "platform/linux/system/TerminationSignals.h"
#include "platform/linux/system/XdgFolders.h"
#include "platform/qt/DesktopNotifier.h"
#include "platform/qt/QtEvents.h"
#include "platform/qt/QtLocale.h"
#include "platform/qt/QtNotificationArea.h"
#include "platform/qt/QtScreen.h"
#include "program/Program.h"
#include "stats/frmStatistik.h"

#include <QApplication>
#include <QLocale>
#include <QPointer>
#include <QSocketNotifier>

#include <cstdlib>

namespace korvalin {
namespace {

// Before the toolkit starts: it reads these once.
void ChoosePlatform() {
    // Nothing here draws with OpenGL; looking for it costs a third of the start and ten megabytes.
    setenv("QT_XCB_GL_INTEGRATION", "none", 0);
    // A Wayland compositor lets no program place its window or keep it on top; XWayland does.
    if (getenv("WAYLAND_DISPLAY") != nullptr && getenv("DISPLAY") != nullptr)
        setenv("QT_QPA_PLATFORM", "xcb", 0);
}

// Runs the program with its windows on this system's back ends until it ends; returns the exit code.
int RunDesktop(int argc, char** argv) {
    const TerminationSignals termination;
    ChoosePlatform();
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Korvalin"));
    QGuiApplication::setDesktopFileName(QStringLiteral("korvalin"));
    QApplication::setWindowIcon(ProgramIcon());
    QApplication::setQuitOnLastWindowClosed(false); // the window may be hidden and the program still wanted

    QtMessageBoxes messageBoxes;
    QtScreen screen;
    QtEvents events;
    LinuxSystem system;
    Locale locale = ReadQtLocale(QLocale::system());
    locale.Collate = SystemCollation();
    const Ports ports = system.PortsWith(events, messageBoxes, screen);
    Program program(ports, std::move(locale));
    messageBoxes.Plug(program.language);
    const Manual manual({program.language, system.UserShell(), messageBoxes});
    QtDialDialog dialDialog;
    dialDialog.Plug(program.language);
    system.PlugDialDialog(&dialDialog);
    program.language.PlugAskLanguage([&] {
        frmLanguage dialog(program.language);
        dialog.exec();
    });
    InstanceDoor door(ConfigFolder(), system.UserShell().ExecutablePath().filename().string());
    if (program.startup.AnotherInstanceRefused()) {
        door.Knock();
        return EXIT_SUCCESS;
    }
    // Until there is a window only the questions of the start can be open.
    frmMain* mainWindow = nullptr;
    bool ends = false;
    const auto nobodyAnswers = [&] {
        messageBoxes.NobodyAnswers([&](const std::string& text) { program.KeepMessage(text); });
    };
    const EndRequests endRequests(termination);
    QObject::connect(&endRequests, &EndRequests::EndRequested, &application, [&](CloseReason reason) {
        ends = true;
        nobodyAnswers();
        mainWindow != nullptr ? mainWindow->Quit(reason) : QCoreApplication::exit();
    });
    if (!program.Main() || ends) return EXIT_SUCCESS;
    program.LogNotes(system.TakeNotes());
    UseToolkitTexts(program.language);

    std::unique_ptr<frmStatistik> statistics; // made when it is first wanted
    const auto openStatistics = [&] {
        if (!statistics) {
            statistics = std::make_unique<frmStatistik>(frmStatistik::Parts{.Settings = program.settings,
                                                                            .Language = program.language,
                                                                            .Errors = program.errors,
                                                                            .MessageBoxes = messageBoxes,
                                                                            .StatFile = program.statFile,
                                                                            .Aliases = program.aliases,
                                                                            .MonthSums = program.monthSums,
                                                                            .PeriodSums = program.periodSums,
                                                                            .Clock = system.SystemTime(),
                                                                            .Locale = program.locale,
                                                                            .Recorder = program.recorder});
        }
        statistics->Open();
    };
    DesktopNotifier notifier(
        [&](const std::string& title, const std::string& text) { messageBoxes.ShowNotice(text, title); });
    QObject::connect(&notifier, &DesktopNotifier::Clicked, [&] {
        openStatistics();
        statistics->ShowSums();
    });
    program.allowanceWatch.Plug(notifier);
    QtNotificationArea tray;
    QPointer<frmEinstellungen> settings; // exists only while it is shown
    frmMain window({.Settings = program.settings,
                    .Language = program.language,
                    .Screen = screen,
                    .SamplingLoop = program.samplingLoop,
                    .LineState = program.lines,
                    .RateHistory = program.rateHistory,
                    .InfoTexts = program.infoTexts,
                    .LiveTexts = program.liveTexts,
                    .MonthSums = program.monthSums,
                    .Errors = program.errors,
                    .Clock = system.SystemTime(),
                    .Locale = program.locale,
                    .NotificationArea = tray,
                    .MessageBoxes = messageBoxes,
                    .Dialing = program.dialing});
    AboutBox about(program, system.UserShell(), window);
    const auto openSettings = [&] {
        if (!settings) {
            settings = MakeSettingsDialog(program, ports, window);
            settings->setAttribute(Qt::WA_DeleteOnClose);
        }
        settings->Open();
    };
    window.Plug({.Closing =
                     [&](CloseReason reason) {
                         nobodyAnswers();
                         program.updateCheck.Cancel();
                         program.journalKeeper.RecordOpenLines(reason);
                     },
                 .StaysShown = [] { return IsFormLoaded("frmEinstellungen"); },
                 .OpenStatistics = openStatistics,
                 .OpenSettings = openSettings,
                 .OpenAbout = [&] { about.Open(); }});
    program.samplingLoop.Plug({[&] { program.updateSchedule.Arm(); }, [&] { about.ScheduleCheck(); }});
    // A session may take its display away before it asks anybody; the toolkit then ends the process at once.
    const ExitWatch exitWatch([&] {
        nobodyAnswers();
        window.DisplayLost();
    });
    mainWindow = &window;
    program.LoadStatistics();
    if (!ends) window.Form_Load();
    const bool isFirst = !ports.InstanceLock.PreviousInstanceRunning();
    if (const int knocked = isFirst ? door.Open() : -1; knocked >= 0) {
        auto* knocks = new QSocketNotifier(knocked, QSocketNotifier::Read, &window);
        QObject::connect(knocks, &QSocketNotifier::activated, &window, [&] {
            door.Answer();
            window.ShowMainWindow(true);
        });
    }
    QMetaObject::invokeMethod(
        &window, [&] { program.TellKeptMessage(); }, Qt::QueuedConnection);
    const int exitCode = ends ? EXIT_SUCCESS : QApplication::exec();
    delete settings; // nobody deletes a window that is closed at the very end
    program.LogNotes(system.TakeNotes());
    return exitCode;
}

} // namespace
} // namespace korvalin

int main(int argc, char** argv) {
    return korvalin::RunDesktop(argc, argv);
}
