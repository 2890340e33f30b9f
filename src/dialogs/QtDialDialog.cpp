#include "dialogs/QtDialDialog.h"

#include "dialogs/frmDial.h"
#include "dialogs/frmLogin.h"

#include <QApplication>

namespace korvalin {

QtDialDialog::~QtDialDialog() {
    End();
}

void QtDialDialog::Begin(const std::string& entryName) {
    End();
    begun_ = true;
    window_ = new frmDial(texts_, entryName, QApplication::activeWindow());
    window_->show();
    window_->raise();
    window_->activateWindow();
}

void QtDialDialog::ShowStage(DialStage stage) {
    if (window_) window_->ShowStage(stage);
}

bool QtDialDialog::Cancelled() const {
    return begun_ && (!window_ || window_->Cancelled());
}

void QtDialDialog::End() {
    begun_ = false;
    delete window_;
}

std::optional<Login> QtDialDialog::AskLogin(const std::string& entryName, const std::string& userName) {
    QWidget* const above = window_ ? window_ : QApplication::activeWindow();
    return frmLogin::Ask(texts_, entryName, userName, above);
}

} // namespace korvalin
