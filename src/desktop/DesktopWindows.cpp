#include "desktop/DesktopWindows.h"

#include "desktop/SettingsDialog.h"
#include "desktop/frmFirstStart.h"
#include "dialogs/QtMessageBoxes.h"
#include "forms/Loaded.h"
#include "program/Program.h"

namespace korvalin {

void KeepMessages(QtMessageBoxes& messageBoxes, Program& program) {
    messageBoxes.NobodyAnswers([&program](const std::string& text) { program.KeepMessage(text); });
}

DesktopWindows::DesktopWindows(Program& program, const Ports& ports, QtMessageBoxes& messageBoxes)
    : program_(program),
      ports_(ports),
      messageBoxes_(messageBoxes),
      notifier_([this](const std::string& title, const std::string& text) {
          const auto caption = QString::fromStdString(program_.language.Lng("modGlobal", 240));
          messageBoxes_.ShowNotice(text, title, caption, [this] { OpenSums(); });
      }),
      window_({.Settings = program.settings,
               .Language = program.language,
               .Screen = ports.Screen,
               .SamplingLoop = program.samplingLoop,
               .LineState = program.lines,
               .RateHistory = program.rateHistory,
               .InfoTexts = program.infoTexts,
               .LiveTexts = program.liveTexts,
               .MonthSums = program.monthSums,
               .Errors = program.errors,
               .Clock = ports.Clock,
               .Locale = program.locale,
               .NotificationArea = tray_,
               .MessageBoxes = messageBoxes,
               .Dialing = program.dialing}),
      about_(program, ports.Shell, window_),
      panel_(program, window_),
      // A session may take its display away before it asks anybody; the toolkit then ends the process at
      // once.
      exitWatch_([this] {
          KeepMessages(messageBoxes_, program_);
          window_.DisplayLost();
      }) {
    PlugMainWindow();
    PlugNotifier();
    program.samplingLoop.Plug(
        {[this] { program_.updateSchedule.Arm(); }, [this] { about_.ScheduleCheck(); }});
}

DesktopWindows::~DesktopWindows() = default;

void DesktopWindows::PlugMainWindow() {
    window_.Plug({.Closing =
                      [this](CloseReason reason) {
                          KeepMessages(messageBoxes_, program_);
                          program_.updateCheck.Cancel();
                          program_.journalKeeper.RecordOpenLines(reason);
                      },
                  .StaysShown = [] { return IsFormLoaded("frmEinstellungen"); },
                  .OpenStatistics = [this] { OpenStatistics(); },
                  .OpenSettings = [this] { OpenSettings(); },
                  .OpenAbout = [this] { about_.Open(); }});
}

void DesktopWindows::PlugNotifier() {
    QObject::connect(&notifier_, &DesktopNotifier::Clicked, &window_, [this] { OpenSums(); });
    program_.allowanceWatch.Plug(notifier_);
}

void DesktopWindows::Show(bool newcomer) {
    window_.Form_Load();
    if (newcomer) OpenFirstStart();
    QMetaObject::invokeMethod(
        &window_, [this] { program_.TellKeptMessage(); }, Qt::QueuedConnection);
}

void DesktopWindows::Raise() {
    window_.ShowMainWindow(true);
}

void DesktopWindows::Quit(CloseReason reason) {
    window_.Quit(reason);
}

void DesktopWindows::CloseSettings() {
    delete settings_;
}

void DesktopWindows::OpenStatistics() {
    if (!statistics_) {
        statistics_ = std::make_unique<frmStatistik>(frmStatistik::Parts{.Settings = program_.settings,
                                                                         .Language = program_.language,
                                                                         .Errors = program_.errors,
                                                                         .MessageBoxes = messageBoxes_,
                                                                         .StatFile = program_.statFile,
                                                                         .Aliases = program_.aliases,
                                                                         .MonthSums = program_.monthSums,
                                                                         .PeriodSums = program_.periodSums,
                                                                         .Clock = ports_.Clock,
                                                                         .Locale = program_.locale,
                                                                         .Recorder = program_.recorder});
    }
    statistics_->Open();
}

void DesktopWindows::OpenSums() {
    OpenStatistics();
    statistics_->ShowSums();
}

void DesktopWindows::OpenSettings() {
    if (!settings_) {
        settings_ = MakeSettingsDialog(program_, ports_, window_);
        settings_->setAttribute(Qt::WA_DeleteOnClose);
    }
    settings_->Open();
}

void DesktopWindows::OpenFirstStart() {
    auto* first = new frmFirstStart({.Settings = program_.settings,
                                     .Language = program_.language,
                                     .Aliases = program_.aliases,
                                     .LineState = program_.lines,
                                     .InfoTexts = program_.infoTexts});
    first->setAttribute(Qt::WA_DeleteOnClose);
    // Older statistics may have moved in.
    QObject::connect(first, &frmFirstStart::TariffChanged, &window_, [this] {
        StatRecords records;
        const std::size_t known = program_.recorder.RecordsInFile();
        program_.statFile.LoadStatFile(records, false);
        program_.monthSums.CalcStatsThisMonth(records, known);
    });
    first->Open();
}

} // namespace korvalin
