#include "desktop/Desktop.h"

#include "lang/ToolkitTexts.h"
#include "lang/frmLanguage.h"
#include "platform/InstanceLock.h"
#include "platform/Shell.h"
#include "platform/linux/system/LinuxLocale.h"
#include "platform/linux/system/TerminationSignals.h"
#include "platform/linux/system/XdgFolders.h"
#include "platform/qt/QtLocale.h"

#include <QApplication>
#include <QLocale>

#include <cstdlib>

namespace korvalin {
namespace {

Locale UserLocale() {
    Locale locale = ReadQtLocale(QLocale::system());
    locale.Collate = SystemCollation();
    return locale;
}

} // namespace

Desktop::Desktop(const TerminationSignals& termination)
    : ports_(system_.PortsWith(events_, messageBoxes_, screen_)),
      program_(ports_, UserLocale()),
      manual_({program_.language, ports_.Shell, messageBoxes_}),
      door_(ConfigFolder(), ports_.Shell.ExecutablePath().filename().string()),
      endRequests_(termination) {
    messageBoxes_.Plug(program_.language);
    dialDialog_.Plug(program_.language);
    system_.PlugDialDialog(&dialDialog_);
    program_.language.PlugAskLanguage([this] { AskLanguage(); });
    QObject::connect(&endRequests_, &EndRequests::EndRequested, &endRequests_,
                     [this](CloseReason reason) { EndRequested(reason); });
}

Desktop::~Desktop() = default;

int Desktop::Run() {
    if (program_.startup.AnotherInstanceRefused()) {
        door_.Knock();
        return EXIT_SUCCESS;
    }
    OpenDoor();
    if (!program_.Main() || ends_) return EXIT_SUCCESS;
    program_.LogNotes(system_.TakeNotes());
    UseToolkitTexts(program_.language);
    windows_ = std::make_unique<DesktopWindows>(program_, ports_, messageBoxes_);
    program_.LoadStatistics();
    if (!ends_) windows_->Show(languageChosen_);
    const int exitCode = ends_ ? EXIT_SUCCESS : QApplication::exec();
    windows_->CloseSettings();
    program_.LogNotes(system_.TakeNotes());
    return exitCode;
}

// A dialog that is opened when the end has already been asked for would never be closed.
void Desktop::AskLanguage() {
    if (ends_) return;
    frmLanguage dialog(program_.language);
    languageChosen_ = dialog.exec() == QDialog::Accepted;
}

// Before the first question: a second start would end without a word while it waits for its answer.
void Desktop::OpenDoor() {
    const int knocked = ports_.InstanceLock.PreviousInstanceRunning() ? -1 : door_.Open();
    if (knocked < 0) return;
    knocks_ = std::make_unique<QSocketNotifier>(knocked, QSocketNotifier::Read);
    QObject::connect(knocks_.get(), &QSocketNotifier::activated, knocks_.get(), [this] { Knocked(); });
}

void Desktop::Knocked() {
    door_.Answer();
    if (windows_) return windows_->Raise();
    QWidget* const question = QApplication::activeModalWidget();
    if (question == nullptr) return;
    question->setWindowState(question->windowState() & ~Qt::WindowMinimized);
    question->raise();
    question->activateWindow();
}

void Desktop::EndRequested(CloseReason reason) {
    ends_ = true;
    KeepMessages(messageBoxes_, program_);
    windows_ ? windows_->Quit(reason) : QCoreApplication::exit();
}

} // namespace korvalin
