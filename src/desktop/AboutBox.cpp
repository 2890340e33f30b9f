#include "desktop/AboutBox.h"

#include "dialogs/frmAbout.h"
#include "display/frmMain.h"
#include "program/Program.h"

#include <QApplication>
#include <QClipboard>

#include <algorithm>

namespace korvalin {
AboutBox::AboutBox(Program& program, Shell& shell, frmMain& window)
    : program_(program), shell_(shell), window_(window) {
    PlugFetch();
    PlugCheck();
    check_.setSingleShot(true);
    QObject::connect(&check_, &QTimer::timeout, &check_, [this] {
        const bool preCheck = !program_.lines.OnDialUp();
        if (program_.updateSchedule.AutoUpdateCheck(preCheck)) window_.Quit();
    });
}

// Nobody deletes a window that is closed at the very end.
AboutBox::~AboutBox() {
    delete box_;
    program_.webFetch.UseControl(nullptr);
    program_.webFetch.Plug({});
    program_.updateCheck.Plug({});
}

// Before there is an event loop for it, files are fetched without the control.
void AboutBox::PlugFetch() {
    if (program_.components.CheckVBComponent("msinet.ocx", true)) program_.webFetch.UseControl(&control_);
    program_.webFetch.Plug({[this](const FetchProgress& progress) {
                                if (box_) box_->ShowProgress(progress.Received, progress.Announced);
                            },
                            [](const std::string& text) {
                                QGuiApplication::clipboard()->setText(QString::fromStdString(text));
                            }});
}

void AboutBox::PlugCheck() {
    program_.updateCheck.Plug({[this] { return !box_.isNull(); },
                               [this](const std::string& text) {
                                   if (box_) box_->ShowStatus(QString::fromStdString(text));
                               },
                               [this](bool running) {
                                   if (box_) box_->ShowRunning(running);
                               },
                               [this] { return UserIsBusy(); }});
}

// Menus count too. What the window manager knows nothing of is the toolkit's own: a tray icon, for instance.
bool AboutBox::UserIsBusy() const {
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(), [this](const QWidget* window) {
        const bool isOwn = window->windowFlags().testFlag(Qt::BypassWindowManagerHint);
        return window->isVisible() && window != &window_ && window->windowType() != Qt::ToolTip && !isOwn;
    });
}

void AboutBox::Open() {
    if (!box_) {
        box_ = new frmAbout({program_.language, shell_, Program::Version().Numbers()});
        box_->setAttribute(Qt::WA_DeleteOnClose);
        UpdateCheck& check = program_.updateCheck;
        if (program_.updateSite.IsThere()) {
            box_->Plug({.CheckUpdate = [&check] { return static_cast<int>(check.CheckUpdate(false, false)); },
                        .CancelUpdate = [&check] { check.Cancel(); },
                        .EndProgram = [this] { window_.Quit(); }});
        }
        box_->ShowRunning(check.IsRunning() && !check.IsWaiting());
        box_->ShowStatus(QString::fromStdString(program_.updateCheck.Notice()));
    }
    box_->Open();
}

void AboutBox::ScheduleCheck() {
    check_.start(0);
}

} // namespace korvalin
